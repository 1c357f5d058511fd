#include "platform/clsFileDialog.h"

#include "tests/platform/IniFile.h"
#include "tests/support/TempFolder.h"
#include "tests/support/desktop/ModalScript.h"

#include <QHeaderView>
#include <QTreeView>

#include <sys/inotify.h>
#include <unistd.h>

namespace {

const auto LibraryFilter = QStringLiteral("Atlavex (*.Atlavex)|*.Atlavex|All files (*.*) |*.*");
const auto ImageFilter =
    QStringLiteral("All supported formats (*.bmp; *.gif; *.jpg; *.tif)|*.bmp;*.gif;*.jpg;*.tif|"
                   "Bitmaps (*.bmp)|*.bmp|All files (*.*) |*.*");

/// Notices when anybody opens a file.
class OpenWatch {
public:
    explicit OpenWatch(const std::filesystem::path& file) {
        EXPECT_GE(inotify_add_watch(events_, file.c_str(), IN_OPEN), 0);
    }
    ~OpenWatch() { close(events_); }
    OpenWatch(const OpenWatch&) = delete;
    OpenWatch& operator=(const OpenWatch&) = delete;

    bool WasOpened() const {
        inotify_event event{};
        return read(events_, &event, sizeof event) > 0;
    }

private:
    int events_ = inotify_init1(IN_NONBLOCK);
};

/// The window's one system dialog, driven by keys in a folder of its own.
class FileDialogs : public testing::Test {
protected:
    using Act = std::function<void(QFileDialog&)>;

    void SetUp() override {
        std::filesystem::remove_all(std::filesystem::path(IniFilePath()).parent_path());
        system_.setObjectName(QStringLiteral("FileDialog"));
        std::filesystem::create_directory(folder_ / "maps");
        WriteWholeFile(folder_ / "maps/a.Atlavex", "a");
        WriteWholeFile(folder_ / "maps/B.ATLAVEX", "b");
        WriteWholeFile(folder_ / "maps/c.txt", "c");
    }

    std::string Path(const char* name) const { return (folder_ / name).string(); }

    static clsFileDialog Prepared(const char* key, std::int16_t type, const QString& filter = LibraryFilter) {
        clsFileDialog dialog;
        dialog.Init(QStringLiteral("Brisquent"), QString::fromLatin1(key));
        dialog.SetTitle(QStringLiteral("Open Atlavex"));
        dialog.SetFilter(filter);
        dialog.SetDialogType(type);
        return dialog;
    }

    static QLineEdit& NameField(QFileDialog& dialog) {
        return *dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    }
    static void TypeName(QFileDialog& dialog, const std::string& name) {
        dialog.activateWindow();
        NameField(dialog).setFocus();
        EXPECT_TRUE(QTest::qWaitFor([&] { return NameField(dialog).hasFocus(); }));
        // In one go, like a paste: while the dialog is still reading its folder it completes what is typed.
        NameField(dialog).setText(QString::fromStdString(name));
        QTest::keyClick(&NameField(dialog), Qt::Key_Return);
    }
    static void PickFilter(QFileDialog& dialog, int place) {
        auto* const filters = dialog.findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
        QTest::keyClick(filters, Qt::Key_Home);
        for (int i = 0; i < place; ++i)
            QTest::keyClick(filters, Qt::Key_Down);
    }
    /// The files listed once the dialog has read its folder: the folder itself is known by then.
    static QStringList Listed(QFileDialog& dialog, int expected) {
        const auto* const view = dialog.findChild<QListView*>(QStringLiteral("listView"));
        const auto count = [&] { return view->model()->rowCount(view->rootIndex()); };
        EXPECT_TRUE(QTest::qWaitFor([&] { return count() == expected; }));
        QStringList names;
        for (int i = 0; i < count(); ++i)
            names.append(view->model()->index(i, 0, view->rootIndex()).data().toString());
        names.sort();
        return names;
    }

    void Expect(Act act) {
        script_.Expect(QStringLiteral("FileDialog"),
                       [act = std::move(act)](QWidget& window) { act(dynamic_cast<QFileDialog&>(window)); });
    }
    void ExpectName(const std::string& name) {
        Expect([name](QFileDialog& dialog) { TypeName(dialog, name); });
    }
    void ExpectCancel(Act look = {}) {
        Expect([look = std::move(look)](QFileDialog& dialog) {
            if (look)
                look(dialog);
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
    }

    TempFolder folder_;
    QWidget window_;
    QFileDialog system_{&window_};
    ModalScript script_;
};

} // namespace

TEST_F(FileDialogs, ShowEveryDateAndSizeWhole) {
    QFont large = system_.font();
    large.setPointSize(20);
    system_.setFont(large);
    clsFileDialog dialog = Prepared("OpenAtlavex", clsFileDialog::Open);
    dialog.SetInitDir(QString::fromStdString(Path("maps")));
    ExpectCancel([](QFileDialog& shown) {
        shown.setViewMode(QFileDialog::Detail);
        EXPECT_EQ(Listed(shown, 2).size(), 2);
        const auto& list = *shown.findChild<QTreeView*>(QStringLiteral("treeView"));
        QApplication::processEvents();
        for (int column = 0; column < 4; ++column)
            for (int row = 0; row < 2; ++row) {
                const QModelIndex entry = list.model()->index(row, column, list.rootIndex());
                EXPECT_GE(list.header()->sectionSize(column),
                          list.fontMetrics().horizontalAdvance(entry.data().toString()))
                    << entry.data().toString().toStdString();
            }
    });
    EXPECT_FALSE(dialog.Show(system_));
}

TEST_F(FileDialogs, StartWithoutFolderFilterAndNameOnFirstUse) {
    clsFileDialog dialog = Prepared("OpenAtlavex", clsFileDialog::Open);
    EXPECT_EQ(dialog.InitDir(), QString());
    EXPECT_EQ(dialog.FileName(), QString());
    EXPECT_EQ(dialog.OnlyFileName(), QString());
    EXPECT_EQ(dialog.FilterIndex(), 0);
    ExpectCancel([](QFileDialog& shown) {
        EXPECT_EQ(shown.windowTitle(), QStringLiteral("Open Atlavex"));
        EXPECT_EQ(shown.directory().path(), QDir::currentPath());
        EXPECT_EQ(shown.selectedNameFilter(), QStringLiteral("Atlavex (*.Atlavex)"));
        EXPECT_EQ(NameField(shown).text(), QString());
        EXPECT_TRUE(shown.testOption(QFileDialog::DontUseNativeDialog));
        EXPECT_TRUE(shown.isModal());
    });
    EXPECT_FALSE(dialog.Show(system_));
}

TEST_F(FileDialogs, GiveTheChosenFileItsFolderAndItsName) {
    clsFileDialog dialog = Prepared("OpenAtlavex", clsFileDialog::Open);
    ExpectName(Path("maps/a.Atlavex"));
    ASSERT_TRUE(dialog.Show(system_));
    EXPECT_EQ(dialog.FileName().toStdString(), Path("maps/a.Atlavex"));
    EXPECT_EQ(dialog.InitDir().toStdString(), Path("maps") + "/");
    EXPECT_EQ(dialog.OnlyFileName(), QStringLiteral("a.Atlavex"));
    EXPECT_EQ(dialog.FilterIndex(), 1);
    EXPECT_TRUE(IniFile().IsEmpty()) << "only SaveSettings remembers";
}

TEST_F(FileDialogs, RememberFilterFolderAndNamePerDialog) {
    clsFileDialog dialog = Prepared("OpenAtlavex", clsFileDialog::Open);
    Expect([this](QFileDialog& shown) {
        PickFilter(shown, 1);
        TypeName(shown, Path("maps/c.txt"));
    });
    ASSERT_TRUE(dialog.Show(system_));
    dialog.SaveSettings();
    EXPECT_EQ(IniFile().Value("OpenAtlavex", "FilterIndex"), "2");
    EXPECT_EQ(IniFile().Value("OpenAtlavex", "InitDir"), Path("maps") + "/");
    EXPECT_EQ(IniFile().Value("OpenAtlavex", "FileName"), Path("maps/c.txt"));

    clsFileDialog again = Prepared("OpenAtlavex", clsFileDialog::Open);
    EXPECT_EQ(again.FilterIndex(), 2);
    EXPECT_EQ(again.InitDir().toStdString(), Path("maps") + "/");
    EXPECT_EQ(again.FileName().toStdString(), Path("maps/c.txt"));
    ExpectCancel([this](QFileDialog& shown) {
        EXPECT_EQ(shown.directory().path().toStdString(), Path("maps"));
        EXPECT_EQ(shown.selectedNameFilter(), QStringLiteral("All files (*.*)"));
        EXPECT_EQ(NameField(shown).text(), QString()) << "the remembered name is not offered";
    });
    again.Show(system_);
    EXPECT_EQ(Prepared("SaveAtlavexAs", clsFileDialog::Save).InitDir(), QString());
}

TEST_F(FileDialogs, ChangeNothingWhenCancelled) {
    clsFileDialog first = Prepared("NewIcon", clsFileDialog::Open);
    ExpectName(Path("maps/a.Atlavex"));
    ASSERT_TRUE(first.Show(system_));
    first.SaveSettings();
    const std::string stored = ReadWholeFile(IniFilePath());

    clsFileDialog dialog = Prepared("NewIcon", clsFileDialog::Open);
    Expect([this](QFileDialog& shown) {
        PickFilter(shown, 1);
        shown.setDirectory(QString::fromStdString(folder_.Path().string()));
        NameField(shown).setText(QStringLiteral("other"));
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    EXPECT_FALSE(dialog.Show(system_));
    EXPECT_EQ(dialog.FilterIndex(), 1);
    EXPECT_EQ(dialog.InitDir().toStdString(), Path("maps") + "/");
    EXPECT_EQ(dialog.FileName().toStdString(), Path("maps/a.Atlavex"));
    EXPECT_EQ(ReadWholeFile(IniFilePath()), stored);
}

TEST_F(FileDialogs, NeverForgetAStoredFolderForAnEmptyOne) {
    clsFileDialog first = Prepared("OpenAtlavex", clsFileDialog::Open);
    first.SetInitDir(QStringLiteral("/kept/"));
    first.SetFileName(QStringLiteral("/kept/name"));
    first.SaveSettings();
    clsFileDialog second = Prepared("OpenAtlavex", clsFileDialog::Open);
    second.SetInitDir(QString());
    second.SetFileName(QString());
    second.SaveSettings();
    EXPECT_EQ(IniFile().Value("OpenAtlavex", "InitDir"), "/kept/");
    EXPECT_EQ(IniFile().Value("OpenAtlavex", "FileName"), "/kept/name");
    EXPECT_EQ(IniFile().Value("OpenAtlavex", "FilterIndex"), "0");
}

TEST_F(FileDialogs, SplitPathsOfEitherKind) {
    clsFileDialog dialog;
    const std::map<const char*, const char*> names{{"C:\\maps\\a.Atlavex", "a.Atlavex"},
                                                   {"/maps/a.Atlavex", "a.Atlavex"},
                                                   {"/maps/back\\slash", "back\\slash"},
                                                   {"a.Atlavex", "a.Atlavex"},
                                                   {"/maps/", ""},
                                                   {"", ""}};
    for (const auto& [path, name] : names) {
        dialog.SetFileName(QString::fromLatin1(path));
        EXPECT_EQ(dialog.OnlyFileName().toStdString(), name) << path;
    }
}

TEST_F(FileDialogs, ReadAnUnusableFilterPositionAsNone) {
    for (const char* const stored : {"abc", "70000", "-70000", "1.5", "99"}) {
        std::filesystem::create_directories(std::filesystem::path(IniFilePath()).parent_path());
        WriteWholeFile(IniFilePath(),
                       std::string("[OpenAtlavex]\nFilterIndex=") + stored + "\n# " + stored + "\n");
        clsFileDialog dialog = Prepared("OpenAtlavex", clsFileDialog::Open);
        EXPECT_EQ(dialog.FilterIndex(), std::string(stored) == "99" ? 99 : 0) << stored;
        ExpectCancel([](QFileDialog& shown) {
            EXPECT_EQ(shown.selectedNameFilter(), QStringLiteral("Atlavex (*.Atlavex)"));
        });
        dialog.Show(system_);
    }
}

TEST_F(FileDialogs, StartInThePresentFolderWhenTheRememberedOneIsGone) {
    for (const QString& gone : {QStringLiteral("/gone/away/"), QStringLiteral("C:\\maps\\")}) {
        clsFileDialog dialog = Prepared("OpenAtlavex", clsFileDialog::Open);
        dialog.SetInitDir(gone);
        ExpectCancel([](QFileDialog& shown) { EXPECT_EQ(shown.directory().path(), QDir::currentPath()); });
        dialog.Show(system_);
    }
}

TEST_F(FileDialogs, ListFilesOfTheFilterInEitherLetterCase) {
    clsFileDialog dialog = Prepared("OpenAtlavex", clsFileDialog::Open);
    dialog.SetInitDir(QString::fromStdString(Path("maps")));
    ExpectCancel([](QFileDialog& shown) {
        EXPECT_EQ(Listed(shown, 2).join(u' '), QStringLiteral("B.ATLAVEX a.Atlavex"));
        PickFilter(shown, 1);
        EXPECT_EQ(Listed(shown, 3).size(), 3);
    });
    dialog.Show(system_);
}

TEST_F(FileDialogs, ListFilesOfEveryPatternOfAFilter) {
    WriteWholeFile(folder_ / "maps/d.bmp", "d");
    WriteWholeFile(folder_ / "maps/e.TIF", "e");
    clsFileDialog dialog = Prepared("NewBitmap", clsFileDialog::Open, ImageFilter);
    dialog.SetInitDir(QString::fromStdString(Path("maps")));
    ExpectCancel([](QFileDialog& shown) {
        EXPECT_EQ(Listed(shown, 2).join(u' '), QStringLiteral("d.bmp e.TIF"));
        PickFilter(shown, 1);
        EXPECT_EQ(Listed(shown, 1).join(u' '), QStringLiteral("d.bmp"));
    });
    dialog.Show(system_);
}

TEST_F(FileDialogs, ShowTheDescriptionsOfTheFilterAsTheyStand) {
    clsFileDialog dialog = Prepared("NewBitmap", clsFileDialog::Open, ImageFilter);
    ExpectCancel([](QFileDialog& shown) {
        const auto* const filters = shown.findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
        ASSERT_EQ(filters->count(), 3);
        EXPECT_EQ(filters->itemText(0), QStringLiteral("All supported formats (*.bmp; *.gif; *.jpg; *.tif)"));
        EXPECT_EQ(filters->itemText(1), QStringLiteral("Bitmaps (*.bmp)"));
        EXPECT_EQ(filters->itemText(2), QStringLiteral("All files (*.*)"));
    });
    dialog.Show(system_);
}

TEST_F(FileDialogs, OpenOnlyWhatExists) {
    clsFileDialog dialog = Prepared("OpenAtlavex", clsFileDialog::Open);
    dialog.SetInitDir(QString::fromStdString(Path("maps")));
    ExpectName("missing.Atlavex");
    script_.Expect(QStringLiteral("QMessageBox"), [this](QWidget& box) {
        QTest::keyClick(&box, Qt::Key_Escape);
        QTimer::singleShot(0, &system_, [this] { TypeName(system_, "a.Atlavex"); });
    });
    ASSERT_TRUE(dialog.Show(system_));
    EXPECT_EQ(dialog.FileName().toStdString(), Path("maps/a.Atlavex"));
}

TEST_F(FileDialogs, CompleteANameWithoutAnEndingByThatOfTheFilter) {
    const auto saved = [this](int filter, const char* name) {
        clsFileDialog dialog = Prepared("SaveAtlavexAs", clsFileDialog::Save);
        dialog.SetInitDir(QString::fromStdString(Path("maps")));
        Expect([=](QFileDialog& shown) {
            PickFilter(shown, filter);
            TypeName(shown, name);
        });
        EXPECT_TRUE(dialog.Show(system_));
        return std::filesystem::path(dialog.FileName().toStdString()).filename().string();
    };
    EXPECT_EQ(saved(0, "new name"), "new name.Atlavex");
    EXPECT_EQ(saved(1, "new name"), "new name") << "all files";
    EXPECT_EQ(saved(0, "new name"), "new name.Atlavex");
    EXPECT_EQ(saved(0, "new.atlavex"), "new.atlavex");
    EXPECT_EQ(saved(0, "new.txt"), "new.txt");
    EXPECT_FALSE(std::filesystem::exists(Path("maps/new name.Atlavex")));
}

TEST_F(FileDialogs, CompleteANameBeforeTheyAskWhetherToReplaceTheFile) {
    clsFileDialog dialog = Prepared("SaveAtlavexAs", clsFileDialog::Save);
    dialog.SetInitDir(QString::fromStdString(Path("maps")));
    ExpectName("a");
    script_.Expect(QStringLiteral("QMessageBox"), [](QWidget& box) {
        EXPECT_EQ(dynamic_cast<QMessageBox&>(box).text(),
                  QStringLiteral("a.Atlavex already exists.\nDo you want to replace it?"));
        QTest::mouseClick(dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes), Qt::LeftButton);
    });
    ASSERT_TRUE(dialog.Show(system_));
    EXPECT_EQ(dialog.FileName().toStdString(), Path("maps/a.Atlavex"));
}

TEST_F(FileDialogs, CompleteNoNameOfAFileToOpen) {
    WriteWholeFile(folder_ / "maps/plain", "no ending");
    clsFileDialog save = Prepared("SaveAtlavexAs", clsFileDialog::Save);
    ExpectCancel();
    EXPECT_FALSE(save.Show(system_));
    clsFileDialog open = Prepared("OpenAtlavex", clsFileDialog::Open);
    open.SetInitDir(QString::fromStdString(Path("maps")));
    ExpectName("plain");
    ASSERT_TRUE(open.Show(system_));
    EXPECT_EQ(open.FileName().toStdString(), Path("maps/plain"));
}

TEST_F(FileDialogs, AskBeforeTheyReplaceAFile) {
    clsFileDialog dialog = Prepared("SaveAtlavexAs", clsFileDialog::Save);
    dialog.SetInitDir(QString::fromStdString(Path("maps")));
    ExpectName("a.Atlavex");
    script_.Expect(QStringLiteral("QMessageBox"), [this](QWidget& box) {
        EXPECT_EQ(dynamic_cast<QMessageBox&>(box).text(),
                  QStringLiteral("a.Atlavex already exists.\nDo you want to replace it?"));
        QTest::keyClick(&box, Qt::Key_Return); // No is the default
        EXPECT_TRUE(system_.isVisible());
        QTimer::singleShot(0, &system_, [this] { TypeName(system_, "B.ATLAVEX"); });
    });
    script_.Expect(QStringLiteral("QMessageBox"), [](QWidget& box) {
        QTest::mouseClick(dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes), Qt::LeftButton);
    });
    ASSERT_TRUE(dialog.Show(system_));
    EXPECT_EQ(dialog.FileName().toStdString(), Path("maps/B.ATLAVEX"));
}

TEST_F(FileDialogs, SaveIntoFoldersThatExistOnly) {
    clsFileDialog dialog = Prepared("SaveAtlavexAs", clsFileDialog::Save);
    ExpectName(Path("nowhere/a.Atlavex"));
    script_.ExpectBox(
        QString::fromStdString(Path("nowhere")) +
        QStringLiteral("\nDirectory not found.\nPlease verify the correct directory name was given."));
    Expect([this](QFileDialog& shown) {
        EXPECT_EQ(NameField(shown).text().toStdString(), Path("nowhere/a.Atlavex")) << "to be corrected";
        TypeName(shown, Path("maps/new.Atlavex"));
    });
    ASSERT_TRUE(dialog.Show(system_));
    EXPECT_EQ(dialog.FileName().toStdString(), Path("maps/new.Atlavex"));
}

TEST_F(FileDialogs, ShowNothingOfAnotherType) {
    for (const std::int16_t type : std::initializer_list<std::int16_t>{0, 3, -1}) {
        clsFileDialog dialog = Prepared("OpenAtlavex", type);
        EXPECT_FALSE(dialog.Show(system_));
    }
}

TEST_F(FileDialogs, AreSetAnewEachTimeTheyShow) {
    clsFileDialog save = Prepared("SaveAtlavexAs", clsFileDialog::Save);
    Expect([this](QFileDialog& shown) {
        EXPECT_EQ(shown.acceptMode(), QFileDialog::AcceptSave);
        shown.setFilter(shown.filter() | QDir::Hidden);
        shown.setOption(QFileDialog::DontConfirmOverwrite);
        TypeName(shown, Path("maps/new.Atlavex"));
    });
    ASSERT_TRUE(save.Show(system_));

    clsFileDialog open = Prepared("OpenAtlavex", clsFileDialog::Open);
    ExpectCancel([](QFileDialog& shown) {
        EXPECT_EQ(shown.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(shown.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(shown.labelText(QFileDialog::Accept), QStringLiteral("&Open"));
        EXPECT_FALSE(shown.filter().testFlag(QDir::Hidden));
        EXPECT_FALSE(shown.testOption(QFileDialog::DontConfirmOverwrite));
        EXPECT_EQ(NameField(shown).text(), QString());
    });
    EXPECT_FALSE(open.Show(system_));

    clsFileDialog again = Prepared("SaveAtlavexAs", clsFileDialog::Save);
    again.SetTitle(QStringLiteral("Save Atlavex As"));
    ExpectCancel([](QFileDialog& shown) {
        EXPECT_EQ(shown.windowTitle(), QStringLiteral("Save Atlavex As"));
        EXPECT_EQ(shown.fileMode(), QFileDialog::AnyFile);
        EXPECT_EQ(shown.labelText(QFileDialog::Accept), QStringLiteral("&Save"));
    });
    EXPECT_FALSE(again.Show(system_));
}

TEST_F(FileDialogs, StartWithNothingSelectedEachTime) {
    for (int time = 0; time < 3; ++time) {
        clsFileDialog save = Prepared("SaveAtlavexAs", clsFileDialog::Save);
        Expect([this](QFileDialog& shown) {
            const auto* const list = shown.findChild<QListView*>(QStringLiteral("listView"));
            EXPECT_TRUE(list->selectionModel()->selectedRows().isEmpty());
            TypeName(shown, Path("maps/new.Atlavex"));
            EXPECT_FALSE(shown.isVisible()) << "what is typed is taken at once";
        });
        ASSERT_TRUE(save.Show(system_));
        save.SaveSettings();
    }
}

TEST_F(FileDialogs, OpenNoneOfTheFilesThatTheyList) {
    // Its name does not say what it is.
    WriteWholeFile(folder_ / "maps/nameless", "x");
    const OpenWatch watch(folder_ / "maps/nameless");
    clsFileDialog dialog = Prepared("OpenAtlavex", clsFileDialog::Open);
    dialog.SetInitDir(QString::fromStdString(Path("maps")));
    ExpectCancel([](QFileDialog& shown) {
        shown.setViewMode(QFileDialog::Detail);
        PickFilter(shown, 1);
        const auto* const view = shown.findChild<QTreeView*>(QStringLiteral("treeView"));
        const auto cell = [view](int row, int column) {
            return view->model()->index(row, column, view->rootIndex());
        };
        ASSERT_TRUE(QTest::qWaitFor([&] { return view->model()->rowCount(view->rootIndex()) == 4; }));
        for (int row = 0; row < 4; ++row) {
            EXPECT_FALSE(cell(row, 0).data(Qt::DecorationRole).value<QIcon>().isNull());
            EXPECT_THAT(cell(row, 2).data().toString().toStdString(), testing::HasSubstr("File"));
        }
    });
    dialog.Show(system_);
    EXPECT_FALSE(watch.WasOpened());
}
