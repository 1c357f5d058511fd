// What editing costs in a library of many maps and icons: bench_editing [MAPS ICONS]. Drives the real main
// window without a screen. For each step the 99th percentile and the median of the time from the user's last
// click to the window's being ready again, in milliseconds, are printed; for a quarter, half and twice as
// many maps and icons, too, so that the growth can be seen. Then the time from the menu entry to the metadata
// dialog of a map with many texts, drawn and ready.

#include "app/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QImage>
#include <QLineEdit>
#include <QMessageBox>
#include <QMetaObject>
#include <QPushButton>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int Rounds = 100;
constexpr int Side = 64; ///< pixels of every image: the number of objects is what counts

/// Makes and saves a library of so many scaled maps, each with so many texts of its own, and icons.
QString MakeLibrary(const QString& folder, int maps, int icons, int texts = 0) {
    const QString image = folder + QStringLiteral("/image.png");
    QImage picture(Side, Side, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    picture.save(image);
    const auto library = CreateAtlavexLibrary();
    for (int i = 0; i < maps; ++i) {
        const auto map =
            library->AddMapFromImageFile(image.toStdString(), "Map " + std::to_string(i), Side, Side);
        map->SetIdentifier(std::to_string(i));
        for (int text = 0; text < texts; ++text)
            map->SetMetadata("Key " + std::to_string(text), "Text " + std::to_string(text));
        map->SetScalingThreePoints({0, 0, 0, 0}, {1, 0, Side, 0}, {0, 1, 0, Side});
    }
    for (int i = 0; i < icons; ++i)
        library->AddIconFromImageFile(image.toStdString(), "Icon " + std::to_string(i));
    QString file = folder + QStringLiteral("/bench.Atlavex");
    library->SaveToFile(file.toStdString(), {});
    return file;
}

/// The times of one step, round by round.
class Times {
public:
    void Add(double milliseconds) { values_.push_back(milliseconds); }
    double Percentile(double share) {
        std::ranges::sort(values_);
        const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(values_.size())));
        return values_.at(rank - 1);
    }

private:
    std::vector<double> values_;
};

class Editing {
public:
    explicit Editing(const QString& file) {
        window_.Form_Load(file);
        window_.show();
        QApplication::processEvents();
    }

    void Run(const char* list, const char* rename, const char* metadata, const char* remove) {
        auto& entries = *window_.findChild<QComboBox*>(QLatin1String(list));
        const int count = entries.count();
        Times selecting, renaming, refilling, deleting;
        for (int round = 0; round < Rounds; ++round) {
            const int entry = static_cast<int>((std::int64_t{round} * 7919) % entries.count());
            selecting.Add(Clock([&] { Select(entries, entry); }));
            renaming.Add(InDialog(rename, [&](QWidget& dialog) {
                dialog.findChild<QLineEdit*>(QStringLiteral("tbMetaName"))->setText(QString::number(round));
                dialog.findChild<QPushButton*>(QStringLiteral("btnOK"))->click();
            }));
            refilling.Add(InDialog(metadata, [](QWidget& dialog) {
                dialog.findChild<QPushButton*>(QStringLiteral("btnCancel"))->click();
            }));
        }
        for (int round = 0; round < std::clamp(count / 4, 1, Rounds); ++round)
            deleting.Add(InDialog(remove, [](QWidget& dialog) {
                dynamic_cast<QMessageBox&>(dialog).button(QMessageBox::Yes)->click();
            }));
        std::printf("%-8s %6d |", list, count);
        for (Times* const times : {&selecting, &renaming, &refilling, &deleting})
            std::printf(" %6.2f / %6.2f", times->Percentile(0.99), times->Percentile(0.5));
        std::printf("\n");
    }

    void RunMetadata(int texts) {
        Times opening;
        for (int round = 0; round < Rounds; ++round)
            opening.Add(OpenDialog("mnuMapMetaData"));
        std::printf("metadata %6d | opening %6.2f / %6.2f\n", texts, opening.Percentile(0.99),
                    opening.Percentile(0.5));
    }

private:
    static double Clock(const std::function<void()>& step) {
        QElapsedTimer timer;
        timer.start();
        step();
        QApplication::processEvents();
        return static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }

    static void Select(QComboBox& entries, int entry) {
        entries.setCurrentIndex(entry);
        Q_EMIT entries.activated(entry);
    }

    /// The menu entry's dialog is answered as soon as it is there; the time from the answer on.
    double InDialog(const char* entry, const std::function<void(QWidget&)>& answer) {
        QElapsedTimer timer;
        const auto act = [&] {
            QApplication::processEvents();
            timer.start();
            answer(*QApplication::activeModalWidget());
        };
        QMetaObject::invokeMethod(&window_, act, Qt::QueuedConnection);
        window_.findChild<QAction*>(QLatin1String(entry))->trigger();
        QApplication::processEvents();
        return static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }

    /// The time until the menu entry's dialog has been drawn; it is closed at once.
    double OpenDialog(const char* entry) {
        QElapsedTimer timer;
        double opened = 0;
        const auto act = [&] {
            QApplication::processEvents();
            opened = static_cast<double>(timer.nsecsElapsed()) / 1e6;
            QApplication::activeModalWidget()->close();
        };
        QMetaObject::invokeMethod(&window_, act, Qt::QueuedConnection);
        timer.start();
        window_.findChild<QAction*>(QLatin1String(entry))->trigger();
        return opened;
    }

    frmMain window_;
};

void Bench(int maps, int icons) {
    const QTemporaryDir folder;
    const QString file = MakeLibrary(folder.path(), maps, icons);
    Editing editing(file);
    editing.Run("ddMaps", "mBitmapRename", "mnuMapMetaData", "mBitmapDelete");
    editing.Run("ddIcons", "mIconsRenameIcons", "mnuIconMetaData", "mIconsDeleteIcon");
}

void BenchMetadata(int texts) {
    const QTemporaryDir folder;
    const QString file = MakeLibrary(folder.path(), 1, 0, texts);
    Editing(file).RunMetadata(texts);
}

} // namespace

int main(int argc, char** argv) {
    const QTemporaryDir home;
    for (const char* const name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
        qputenv(name, home.path().toUtf8());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const int maps = arguments.size() > 2 ? arguments[1].toInt() : 500;
    const int icons = arguments.size() > 2 ? arguments[2].toInt() : 2000;
    std::printf("%-15s | selecting       | renaming        | refilling       | deleting\n", "list, entries");
    for (const int quarters : {1, 2, 4, 8})
        Bench(maps * quarters / 4, icons * quarters / 4);
    for (const int texts : {1000, 2000})
        BenchMetadata(texts);
    return 0;
}
