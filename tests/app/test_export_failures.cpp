// Tile exports that fail, through the menu and the dialog.

#include "platform/modRegistry.h"
#include "tests/app/EditingFixture.h"
#include "tests/support/MountedDisk.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

namespace fs = std::filesystem;

const std::string ExportedName = "00000000-0000-0000-0000-000000000001_map1";

void ForgetFolder() {
    QSettings(QStringLiteral("Kestova"), QStringLiteral("Brisquent")).clear();
}

QString RememberedFolder() {
    return QueryValue(RootKey::CurrentUser, QStringLiteral("Software\\Kestova\\Brisquent\\Export"),
                      QStringLiteral("InitDir"))
        .toString();
}

class ExportFails : public EditingTest {
protected:
    ExportFails() { ForgetFolder(); }

    void StartWithMap(QSize size = {900, 700}) {
        Start(QString::fromStdString(MakeLibrary("a.Atlavex", {size})));
    }

    /// The export in the dialog that is open has to say `expected` (a regular expression) in a box with OK
    /// alone, and to leave the dialog as usable as it was.
    void ExpectFailure(QWidget& window, const std::string& folder, const std::string& expected) {
        TypeInto(window, "tbExportTo", QString::fromStdString(folder));
        Expecting().Expect(QStringLiteral("MessageBox"), [expected](QWidget& shown) {
            const auto& box = dynamic_cast<QMessageBox&>(shown);
            EXPECT_THAT(box.text().toStdString(), testing::MatchesRegex(expected));
            EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton);
        });
        Click(window, "btnExport");
        EXPECT_TRUE(Expecting().IsDone()) << "nothing was said";
        EXPECT_TRUE(window.isVisible());
        EXPECT_TRUE(window.isEnabled());
        EXPECT_TRUE(Control<QPushButton>(window, "btnExport").isEnabled());
        EXPECT_TRUE(Control<QPushButton>(window, "btnCancel").isEnabled());
        EXPECT_EQ(RememberedFolder(), QString()) << "nothing is remembered of a failed export";
    }

    /// Chooses the export from the menu and lets it fail; afterwards the same dialog exports to where it can.
    void FailAndExportElsewhere(const std::string& folder, const std::string& expected) {
        Expecting().Expect(QStringLiteral("frmExport"), [&, this](QWidget& window) {
            ExpectFailure(window, folder, expected);
            Probe() = {};
            Expecting().ExpectBox(ExportCompleted);
            TypeInto(window, "tbExportTo", QString::fromStdString(PathOf("elsewhere")));
            Click(window, "btnExport");
        });
        Choose("mnuTileExport");
        EXPECT_EQ(RememberedFolder().toStdString(), PathOf("elsewhere"));
        EXPECT_TRUE(fs::exists(PathOf("elsewhere/" + ExportedName + "/map.vrt")));
        EXPECT_FALSE(State().busy);
        EXPECT_TRUE(Window().isEnabled());
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        EXPECT_FALSE(State().modified);
        ForgetFolder();
    }

    void ExportTo(const std::string& folder) {
        Expecting().Expect(QStringLiteral("frmExport"), [&](QWidget& window) {
            TypeInto(window, "tbExportTo", QString::fromStdString(folder));
            Expecting().ExpectBox(ExportCompleted);
            Click(window, "btnExport");
        });
        Choose("mnuTileExport");
        ForgetFolder();
    }

    /// Fills the file's disk but for so many bytes.
    static void Fill(const fs::path& file, std::size_t room) {
        WriteWholeFile(file, std::string(fs::space(file.parent_path()).available - room, 'x'));
    }

    static std::string FullDisk(const fs::path& exported) {
        return "\"" + exported.string() +
               "/.+\" cannot be written: the disk is full or a limit is reached\\.";
    }
    static std::string Description(const fs::path& exported) {
        return ReadWholeFile(exported / "tiles.json");
    }

    /// What a failed export left says that it is not finished, and no tile of it is half a tile.
    static void ExpectUnfinished(const fs::path& exported) {
        EXPECT_THAT(Description(exported), testing::HasSubstr("\"complete\": false"));
        EXPECT_FALSE(fs::exists(exported / ".tiles.json.tmp"));
        for (const auto& entry : fs::recursive_directory_iterator(exported))
            if (entry.path().extension() == ".png") {
                EXPECT_FALSE(QImage(QString::fromStdString(entry.path().string())).isNull()) << entry.path();
            }
    }
};

} // namespace

TEST_F(ExportFails, WhereAFileIsInPlaceOfTheFolder) {
    StartWithMap();
    WriteWholeFile(PathOf("file"), "x");
    FailAndExportElsewhere(PathOf("file"), "The folder \"" + PathOf("file") + "/" + ExportedName +
                                               "/\" cannot be used: Not a directory\\.");
    EXPECT_EQ(ReadWholeFile(PathOf("file")), "x");
}

TEST_F(ExportFails, WhereAFileHasTheNameOfItsOwnFolder) {
    StartWithMap();
    fs::create_directory(PathOf("tiles"));
    WriteWholeFile(PathOf("tiles/" + ExportedName), "x");
    FailAndExportElsewhere(PathOf("tiles"), "The folder \"" + PathOf("tiles/" + ExportedName) +
                                                "/\" cannot be used: Not a directory\\.");
    EXPECT_EQ(ReadWholeFile(PathOf("tiles/" + ExportedName)), "x");
}

TEST_F(ExportFails, OnAReadOnlyDisk) {
    StartWithMap();
    const MountedDisk disk(PathOf("disk"), "size=4m");
    fs::create_directory(disk / "there");
    disk.MakeReadOnly();
    for (const char* const folder : {"", "there", "new", "new/deep"})
        FailAndExportElsewhere((disk / folder).string(), "The folder \"" + (disk / folder).string() + "/" +
                                                             ExportedName +
                                                             "/\" cannot be used: Read-only file system\\.");
    EXPECT_TRUE(fs::is_empty(disk / "there"));
}

TEST_F(ExportFails, InAFolderWhereNobodyMayWrite) {
    StartWithMap();
    FailAndExportElsewhere("/proc", "The folder \"/proc/" + ExportedName + "/\" cannot be used: .+\\.");
}

TEST_F(ExportFails, OnAFullDisk) {
    StartWithMap();
    const MountedDisk disk(PathOf("disk"), "size=1m");
    FailAndExportElsewhere(disk.Path().string(), FullDisk(disk / ExportedName));
    ExpectUnfinished(disk / ExportedName);
}

TEST_F(ExportFails, OnADiskThatTakesNoMoreFolders) {
    StartWithMap();
    const MountedDisk disk(PathOf("disk"), "nr_inodes=1");
    FailAndExportElsewhere(disk.Path().string(), "The folder \"" + (disk / ExportedName).string() +
                                                     "/\" cannot be used: No space left on device\\.");
}

TEST_F(ExportFails, OverAFinishedExportThatCannotBeTouched) {
    StartWithMap();
    const MountedDisk disk(PathOf("disk"), "size=16m");
    ExportTo(disk.Path().string());
    disk.MakeReadOnly();
    FailAndExportElsewhere(disk.Path().string(), "\"" + (disk / ExportedName).string() +
                                                     "/.+\" cannot be written: Read-only file system\\.");
    EXPECT_THAT(Description(disk / ExportedName), testing::HasSubstr("\"complete\": true"))
        << "the former tiles are all there";
}

TEST_F(ExportFails, OverAFinishedExportThatIsBegunAnewAndNotFinished) {
    StartWithMap();
    const MountedDisk disk(PathOf("disk"), "size=16m");
    ExportTo(disk.Path().string());
    for (const auto& level : {"1", "2"})
        fs::remove_all(disk / (ExportedName + "/" + level));
    Fill(disk / "filler", std::size_t{100} << 10);
    FailAndExportElsewhere(disk.Path().string(), FullDisk(disk / ExportedName));
    ExpectUnfinished(disk / ExportedName);
}

TEST_F(ExportFails, WhenItsFolderGoesAwayMeanwhile) {
    for (const auto& gone : {std::string("tiles"), "tiles/" + ExportedName}) {
        SCOPED_TRACE(gone);
        StartWithMap({2500, 2000});
        Probe().progressed = [this, gone](float done) {
            if (done > 0)
                fs::remove_all(PathOf(gone));
        };
        FailAndExportElsewhere(PathOf("tiles"), "\"" + PathOf("tiles/" + ExportedName) +
                                                    "/.+\" cannot be written: No such file or directory\\.");
    }
}

TEST_F(ExportFails, UnderANameLongerThanAFolderMayHave) {
    StartWithMap();
    Expecting().Expect(QStringLiteral("frmExport"), [&](QWidget& window) {
        TypeInto(window, "tbName", QString(300, u'n'));
        ExpectFailure(window, PathOf("tiles"), "The folder \".+nnn/\" cannot be used: File name too long\\.");
        Click(window, "btnCancel");
    });
    Choose("mnuTileExport");
}

TEST_F(ExportFails, WhenItIsCancelled) {
    StartWithMap({2500, 2000});
    Probe().progressed = [](float done) {
        if (done > 0)
            CancelProgress();
    };
    FailAndExportElsewhere(PathOf("tiles"), "The operation was cancelled\\.");
    ExpectUnfinished(PathOf("tiles/" + ExportedName));
}
