#include "tests/app/EditorFixture.h"

#include <QAbstractItemView>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

frmMain& EditorTest::Start(const QString& commandLine, bool diagnosticMode) {
    // A program of tests goes on when a window has been closed.
    QApplication::setQuitOnLastWindowClosed(false);
    window_ = std::make_unique<frmMain>(diagnosticMode, [this](const LibraryOptions& asked) {
        LibraryOptions options = Options();
        if (!asked.scratchFolder.empty())
            options.scratchFolder = asked.scratchFolder;
        options.keepUnsavedWork = asked.keepUnsavedWork;
        const auto library =
            std::make_shared<RecordingLibrary>(CreateAtlavexLibrary(options), calls_, probe_);
        library->usualScratchFolder = Options().scratchFolder;
        return library;
    });
    window_->Form_Load(commandLine);
    window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    return *window_;
}

std::vector<std::string> EditorTest::EnabledEntries() {
    std::vector<std::string> names;
    for (const QAction* const menu : window_->menuBar()->actions())
        for (const QAction* const action : menu->menu()->actions())
            if (!action->isSeparator() && action->isEnabled())
                names.push_back(action->objectName().toStdString());
    std::sort(names.begin(), names.end());
    return names;
}

QStringList EditorTest::EntriesOf(const char* list) {
    QStringList entries;
    for (const std::string& entry : Entries(*window_, list))
        entries.append(QString::fromStdString(entry));
    return entries;
}

void EditorTest::Choose(const char* menuEntry) {
    auto& action = Find<QAction>(menuEntry);
    ASSERT_TRUE(action.isEnabled()) << menuEntry;
    for (QMenu* const menu : window_->findChildren<QMenu*>()) {
        if (!menu->actions().contains(&action))
            continue;
        QMenuBar& bar = *window_->menuBar();
        QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(menu->menuAction()).center());
        ASSERT_TRUE(menu->isVisible());
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(&action).center());
        return;
    }
    FAIL() << "In no menu: " << menuEntry;
}

void EditorTest::Pick(const char* list, int entry) {
    auto& combo = Find<QComboBox>(list);
    combo.setFocus();
    combo.showPopup();
    QAbstractItemView* const view = combo.view();
    QTest::keyClick(view, Qt::Key_Home);
    for (int i = 0; i < entry; ++i)
        QTest::keyClick(view, Qt::Key_Down);
    QTest::keyClick(view, Qt::Key_Return);
}

void AnswerFileDialog(QWidget& dialog, const std::optional<std::string>& path) {
    auto* const field = &Control<QLineEdit>(dialog, "fileNameEdit");
    EXPECT_EQ(field->text().toStdString(), "") << "A dialog starts without a file name.";
    if (!path) {
        QTest::keyClick(&dialog, Qt::Key_Escape);
        return;
    }
    dialog.activateWindow();
    field->setFocus();
    EXPECT_TRUE(QTest::qWaitFor([field] { return field->hasFocus(); }));
    // In one go, like a paste: while the dialog is still reading its folder it completes what is typed, and
    // it takes no Return until it has looked at the path.
    for (int tries = 0; tries < 500 && dialog.isVisible(); ++tries) {
        field->setText(QString::fromStdString(*path));
        QTest::keyClick(field, Qt::Key_Return);
        if (dialog.isVisible())
            QTest::qWait(20);
    }
    EXPECT_FALSE(dialog.isVisible()) << "The file dialog does not take " << *path;
}

void EditorTest::ExpectFileDialog(const QString& title, const std::optional<std::string>& path) {
    script_.Expect(QStringLiteral("FileDialog"), [title, path](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle().toStdString(), title.toStdString());
        AnswerFileDialog(dialog, path);
    });
}

void EditorTest::ExpectWizardGivenUp() {
    script_.Expect(QStringLiteral("frmSelectDatumGrid"), [this](QWidget& window) {
        ++wizards_;
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    script_.ExpectBox(WizardCancelled);
}

void EditorTest::OpenByMenu(const std::string& file) {
    ExpectFileDialog(QStringLiteral("Open Atlavex"), file);
    Choose("mFileOpenAtlavex");
}

std::string EditorTest::MakeLibrary(const std::string& name, const std::vector<QSize>& maps, int icons,
                                    const std::string& key) {
    const auto library = NewLibrary();
    unsigned seed = 1;
    for (const QSize& size : maps) {
        const auto map = AddMap(*library, MakeSheet(PixelFormat::Rgb, size.width(), size.height(), seed),
                                "map" + std::to_string(seed));
        map->SetMapDatum({6378137.0, 0.00669437999014, 0, 0, 0, 0, 0, 0, 0});
        map->SetScalingThreePoints({8, 56, 0, 0}, {9, 56, 100, 0}, {8, 55, 0, 100});
        map->SetIdentifier("00000000-0000-0000-0000-00000000000" + std::to_string(seed));
        ++seed;
    }
    for (int i = 1; i <= icons; ++i)
        AddIcon(*library, MakeSheet(PixelFormat::Rgba, 16, 16, 100 + static_cast<unsigned>(i)),
                "icon" + std::to_string(i));
    library->SaveToFile(PathOf(name), key);
    return PathOf(name);
}
