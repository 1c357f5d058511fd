// How the editor stays at hand during long operations: bench_cancel [MEGAPIXELS [FOLDER [IMAGE ...]]]. Drives
// the real main window without a screen over a map of noise whose tiles, with all overviews, take four bytes
// a pixel. For each operation: its time, the longest time without an event handled, how many amounts of
// progress were shown, and for Cancel pressed in its middle the time until the progress dialog was gone.
// Afterwards every pixel of what is open is compared with what was there before, and so is what a whole
// operation saved.

#include "app/frmMain.h"
#include "base/ComponentError.h"
#include "bench/OperationWatch.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCryptographicHash>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <deque>
#include <functional>
#include <random>

namespace {

using Cancel = std::optional<double>;
constexpr std::array<double, 5> Moments{0.02, 0.25, 0.5, 0.75, 0.9};

/// A BMP image of so many million pixels that no compression makes smaller.
void WriteNoise(const QString& path, int megapixels) {
    const auto side = static_cast<std::int32_t>(std::sqrt(megapixels * 1e6)) / 4 * 4;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw ComponentError(ErrorNumber::FileNotWritable, "The image could not be written.");
    QByteArray header("BM");
    const auto append = [&header](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            header.append(static_cast<char>(value >> (8 * i)));
    };
    const std::uint32_t pixels = std::uint32_t{3} * static_cast<std::uint32_t>(side * std::int64_t{side});
    for (const std::uint32_t value :
         {54 + pixels, 0U, 54U, 40U, static_cast<std::uint32_t>(side), static_cast<std::uint32_t>(side)})
        append(value, 4);
    append(1, 2);
    append(24, 2);
    for (const std::uint32_t value : {0U, pixels, 2835U, 2835U, 0U, 0U})
        append(value, 4);
    file.write(header);
    std::mt19937_64 random(1);
    QByteArray row(3 * side, '\0');
    for (std::int32_t y = 0; y < side; ++y) {
        for (qsizetype i = 0; i + 8 <= row.size(); i += 8) {
            const std::uint64_t value = random();
            std::copy_n(reinterpret_cast<const char*>(&value), 8, row.data() + i);
        }
        file.write(row);
    }
}

void Scale(AtlavexMap& map) {
    map.SetScalingThreePoints({0, 0, 0, 0}, {1, 0, 100, 0}, {0, 1, 0, 100});
}

/// The pixels of all maps as one digest, and what is damaged.
QByteArray Digest(AtlavexLibrary& library) {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (std::int32_t position = 1; position <= library.MapCount(); ++position)
        library.GetMap(library.MapIdAt(position))
            ->ReadPixels([&hash](std::span<const std::uint8_t> rows, std::int32_t) {
                hash.addData(QByteArrayView(rows));
            });
    return hash.result() + QByteArray::number(library.IconCount());
}

QByteArray DigestOfFile(const QString& file, const QString& key = {}) {
    const auto library = CreateAtlavexLibrary();
    library->LoadFromFile(file.toStdString(), key.toStdString());
    return Digest(*library);
}

/// The main window and a person before it.
class Editor {
public:
    explicit Editor(const QString& file = {}) {
        answerer_.callOnTimeout([this] { Answer(); });
        answerer_.start(2);
        window_.Form_Load(file);
        window_.show();
    }

    AtlavexLibrary& Library() { return *window_.State().objAtlavex; }

    OperationWatch::Result AddMap(const QString& image, Cancel cancel) {
        Expect([this, cancel](QWidget& settings) { Begin(cancel), Press(settings, "btnOK"); });
        if (cancel) {
            ExpectBox();
        } else {
            Expect([this](QWidget& wizard) { End(), dynamic_cast<QDialog&>(wizard).reject(); });
            ExpectBox();
        }
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(image)});
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window_, &enter);
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&window_, &drop);
        return Finish();
    }
    /// The map just added counts as scaled: its entry is chosen again after New was cancelled.
    void ScaleNewMap() {
        Scale(*window_.State().currentMap);
        Expect([](QWidget& box) { dynamic_cast<QMessageBox&>(box).button(QMessageBox::Cancel)->click(); });
        Trigger("mFileNewAtlavex");
        auto& list = *window_.findChild<QComboBox*>(QStringLiteral("ddMaps"));
        Q_EMIT list.activated(list.currentIndex());
        Finish();
    }
    OperationWatch::Result Save(Cancel cancel) {
        if (cancel)
            ExpectBox();
        Begin(cancel);
        Trigger("mFileSaveAtlavex");
        return Finish();
    }
    OperationWatch::Result WithFile(const char* entry, const QString& file, Cancel cancel, bool endsWithBox) {
        ExpectFile(file, cancel);
        if (cancel || endsWithBox)
            ExpectBox();
        Trigger(entry);
        return Finish();
    }
    void SetKey(const QString& key) {
        Expect([key](QWidget& form) {
            form.findChild<QCheckBox*>(QStringLiteral("cbEncrypt"))->click();
            form.findChild<QLineEdit*>(QStringLiteral("tbEncryptionKey"))->setText(key);
            Press(form, "btnOK");
        });
        Trigger("mnuAtlavexProperties");
        Finish();
    }

private:
    using Step = std::function<void(QWidget&)>;

    static void Press(QWidget& form, const char* button) {
        form.findChild<QPushButton*>(QLatin1String(button))->click();
    }
    void Begin(Cancel cancel) { watch_.Begin(cancel); }
    void End() { result_ = watch_.End(); }
    void Expect(Step step) { steps_.push_back(std::move(step)); }
    void ExpectBox() {
        Expect([this](QWidget& box) { End(), dynamic_cast<QDialog&>(box).accept(); });
    }
    void ExpectFile(const QString& file, Cancel cancel) {
        Expect([this, file, cancel](QWidget& dialog) {
            dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(file);
            // The dialog takes no name before it has looked at the folder.
            watch_.End();
            Begin(cancel);
            QMetaObject::invokeMethod(&dialog, "accept");
            if (!dialog.isVisible())
                return;
            ExpectFile(file, cancel);
            std::rotate(steps_.begin(), steps_.end() - 1, steps_.end());
            met_ = nullptr;
        });
    }
    void Trigger(const char* entry) {
        window_.findChild<QAction*>(QLatin1String(entry))->trigger();
        steps_.clear(); // a Cancel that came too late
    }

    void Answer() {
        QWidget* const modal = QApplication::activeModalWidget();
        if (modal == nullptr || !modal->isVisible())
            met_ = nullptr;
        if (modal == nullptr || !modal->isVisible() || modal == met_)
            return;
        met_ = modal;
        if (steps_.empty()) {
            const auto* const box = qobject_cast<QMessageBox*>(modal);
            std::fprintf(stderr, "Not expected: %s\n",
                         qPrintable(box != nullptr ? box->text() : modal->windowTitle()));
            std::exit(1);
        }
        const Step step = std::move(steps_.front());
        steps_.pop_front();
        step(*modal);
    }
    /// Goes on until every window that was expected has come.
    OperationWatch::Result Finish() {
        while (!steps_.empty())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QApplication::processEvents();
        End();
        return result_;
    }

    OperationWatch watch_;
    OperationWatch::Result result_;
    QTimer answerer_;
    std::deque<Step> steps_;
    QPointer<QWidget> met_; ///< had its step
    frmMain window_;
};

/// One operation: cancelled at several moments, then let through. `once` does it and says how it went.
void Measure(
    const char* name, Editor& editor, const std::function<OperationWatch::Result(Cancel)>& once,
    const std::function<bool()>& isUnchanged = [] { return true; }) {
    const QByteArray before = Digest(editor.Library());
    double slowest = 0;
    double gap = 0;
    int cancelled = 0;
    for (const double moment : Moments) {
        const OperationWatch::Result result = once(moment);
        cancelled += result.cancel > 0 ? 1 : 0;
        slowest = std::max(slowest, result.cancel);
        gap = std::max(gap, result.longestGap);
        std::fprintf(stderr, "%s, cancelled at %.0f %%: %.1f ms after %.0f ms, longest gap %.1f ms\n", name,
                     moment * 100, result.cancel, result.whole, result.longestGap);
    }
    const bool kept =
        Digest(editor.Library()) == before && editor.Library().Verify().empty() && isUnchanged();
    const OperationWatch::Result whole = once(std::nullopt);
    std::printf("| %s | %.1f | %d | %.0f | %.0f | %d | %s |\n", name, whole.whole / 1000, whole.values,
                std::max(gap, whole.longestGap), slowest, cancelled, kept ? "yes" : "NO");
    std::fflush(stdout);
}

void Expect(bool isSo, const char* what) {
    if (!isSo)
        std::printf("| %s: NOT SO |\n", what);
}

/// The files of the bench, all in one folder.
class Bench {
public:
    Bench(const QString& folder, int megapixels) : folder_(folder) {
        WriteNoise(Path("noise.bmp"), megapixels);
        WriteNoise(Path("small.bmp"), 1);
        const auto library = CreateAtlavexLibrary();
        Scale(*library->AddMapFromImageFile(Path("small.bmp").toStdString(), "Small", 256, 256));
        library->SaveToFile(Path("small.Atlavex").toStdString(), {});
        QFile::copy(Path("small.Atlavex"), Path("other.Atlavex"));
    }

    void AddImage(const QString& image) {
        Editor editor(Path("small.Atlavex"));
        const QByteArray name = "add " + QFileInfo(image).fileName().toUtf8();
        Measure(name.constData(), editor, [&](Cancel cancel) { return editor.AddMap(image, cancel); });
    }

    void AddToFile() {
        Editor editor(Path("small.Atlavex"));
        Measure("add map", editor, [&](Cancel cancel) { return editor.AddMap(Path("noise.bmp"), cancel); });
        editor.ScaleNewMap();
        const QByteArray all = Digest(editor.Library());
        Measure(
            "save in place, a new map", editor, [&](Cancel cancel) { return editor.Save(cancel); },
            [&] { return DigestOfFile(Path("small.Atlavex")) != all; });
        Expect(DigestOfFile(Path("small.Atlavex")) == all, "all is in the file");
    }

    void SaveFirst() {
        Editor editor;
        editor.AddMap(Path("noise.bmp"), std::nullopt);
        editor.ScaleNewMap();
        const QStringList names = Names();
        Measure(
            "first save", editor,
            [&](Cancel cancel) {
                return editor.WithFile("mFileSaveAtlavex", Path("first.Atlavex"), cancel, false);
            },
            [&] { return Names() == names; });
        Expect(DigestOfFile(Path("first.Atlavex")) == Digest(editor.Library()), "all is in the file");
    }

    void SaveOtherwise() {
        Editor editor(Path("first.Atlavex"));
        const QString copy = Path("copy.Atlavex");
        const QByteArray all = Digest(editor.Library());
        Measure(
            "Save As", editor,
            [&](Cancel cancel) { return editor.WithFile("mFileSaveAtlavexAs", copy, cancel, false); },
            [&] { return !QFile::exists(copy); });
        Expect(DigestOfFile(copy) == all, "all is in the copy");
        editor.SetKey(QStringLiteral("ab1"));
        Measure(
            "new key", editor, [&](Cancel cancel) { return editor.Save(cancel); },
            [&] { return DigestOfFile(copy) == all; });
        Expect(DigestOfFile(copy, QStringLiteral("ab1")) == all, "all is under the key");
    }

    void Merge() {
        Editor editor(Path("other.Atlavex"));
        Measure("merge", editor, [&](Cancel cancel) {
            return editor.WithFile("mnuMerge", Path("first.Atlavex"), cancel, true);
        });
        Expect(editor.Library().MapCount() == 2, "both maps are there");
    }

private:
    QStringList Names() const { return QDir(folder_).entryList(QDir::Files | QDir::Hidden); }
    QString Path(const char* name) const { return folder_ + QLatin1Char('/') + QLatin1String(name); }

    QString folder_;
};

} // namespace

int main(int argc, char** argv) {
    const QStringList arguments(argv + 1, argv + argc);
    const int megapixels = arguments.isEmpty() ? 268 : arguments[0].toInt();
    if (megapixels <= 0 || megapixels > 100'000) {
        std::fputs("usage: bench_cancel [MEGAPIXELS [FOLDER [IMAGE ...]]]\n", stderr);
        return 2;
    }
    const QTemporaryDir folder((arguments.size() > 1 ? arguments[1] : QStringLiteral("/var/tmp")) +
                               QStringLiteral("/quorvant-cancel-XXXXXX"));
    for (const char* const name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
        qputenv(name, folder.path().toUtf8());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    std::printf("| operation | s | amounts shown | longest gap, ms | Cancel, ms | cancels | kept |\n");
    std::printf("|---|---|---|---|---|---|---|\n");
    Bench bench(folder.path(), megapixels);
    for (const QString& image : arguments.mid(2))
        bench.AddImage(image);
    if (arguments.size() > 2)
        return 0;
    bench.AddToFile();
    bench.SaveFirst();
    bench.SaveOtherwise();
    bench.Merge();
    return 0;
}
