#include "tests/app/ShellFixture.h"
#include "tests/support/MountedDisk.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

/// The editor where no space is left: what is open stays whole, and the next save elsewhere succeeds.
class FullDisk : public ShellTest {
protected:
    std::string OnDisk(const std::string& name) const { return (disk_ / name).string(); }

    /// A picture of noise, which no compression makes fit on the disk.
    std::string LargeImage() { return ImageOf(MakeSheet(PixelFormat::Rgba, 700, 600, 77)); }
    void AddLargeIcon() {
        ExpectFileDialog(QStringLiteral("Open new icon"), LargeImage());
        Expecting().Expect(QStringLiteral("frmNewMap"), [](QWidget& window) { Click(window, "btnOK"); });
        Choose("mIconsNewIcon");
        ASSERT_TRUE(State().modified);
    }
    static QString NoSpace(const std::string& file) {
        return QString::fromStdString("There is no space left to write '" + file + "'.");
    }
    /// New tiles go to the disk from now on.
    void PreferDisk() {
        Expecting().Expect(QStringLiteral("frmPreferences"), [this](QWidget& window) {
            TypeInto(window, "txtTempPath", QString::fromStdString(disk_.Path().string()));
            Click(window, "btnOK");
        });
        Choose("mFilePreferences");
    }
    void ExpectNoSpaceOnDisk() {
        Expecting().Expect(QStringLiteral("MessageBox"), [this](QWidget& window) {
            EXPECT_THAT(dynamic_cast<QMessageBox&>(window).text().toStdString(),
                        testing::HasSubstr("There is no space left to write '" + disk_.Path().string()));
            QTest::keyClick(&window, Qt::Key_Return);
        });
    }
    void EnterKey(const QString& key) {
        Expecting().Expect(QStringLiteral("frmAtlavexProperties"), [key](QWidget& window) {
            Click(window, "cbEncrypt");
            TypeInto(window, "tbEncryptionKey", key);
            Click(window, "btnOK");
        });
        Choose("mnuAtlavexProperties");
    }

    /// All that the open library holds, but for the dates that each attempt to save sets anew.
    LibraryContent OpenContent() {
        LibraryContent content = ContentOf(*State().objAtlavex);
        const auto dropDates = [](auto& objects) {
            for (auto& object : objects)
                std::erase_if(object.metadata,
                              [](const auto& entry) { return entry.first == "lastchanged"; });
        };
        dropDates(content.maps);
        dropDates(content.icons);
        return content;
    }
    void ExpectStill(const LibraryContent& content, const std::string& fileName) {
        EXPECT_TRUE(State().modified);
        EXPECT_EQ(State().fileName.toStdString(), fileName);
        EXPECT_EQ(Title(), fileName.empty() ? PlainTitle : "Quorvant Studio - " + fileName);
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        EXPECT_TRUE(Window().isEnabled());
        EXPECT_FALSE(State().busy);
        EXPECT_NE(State().currentIcon, nullptr);
        EXPECT_TRUE(IsEnabled("mFileSaveAtlavex"));
        EXPECT_FALSE(IsEnabled("mnuTileExport"));
        EXPECT_EQ(OpenContent(), content);
        EXPECT_TRUE(State().objAtlavex->Verify().empty());
    }
    /// Save As to a disk with space: the way out.
    void ExpectSavedElsewhere(const std::string& key = {}) {
        const std::string elsewhere = PathOf("elsewhere.Atlavex");
        ExpectSaveDialog(elsewhere);
        Choose("mFileSaveAtlavexAs");
        EXPECT_FALSE(State().modified);
        EXPECT_EQ(Title(), "Quorvant Studio - " + elsewhere);
        ExpectHolds(elsewhere, key, ContentOf(*State().objAtlavex));
    }

    MountedDisk disk_{PathOf("disk"), "size=1m"};
};

} // namespace

TEST_F(FullDisk, TakesNoFirstSave) {
    Start();
    AddLargeIcon();
    const LibraryContent content = OpenContent();
    ExpectSaveDialog(OnDisk("new.Atlavex"));
    Expecting().ExpectBox(NoSpace(OnDisk("new.Atlavex")));
    Choose("mFileSaveAtlavex");
    ExpectStill(content, {});
    EXPECT_TRUE(Names(disk_.Path()).empty());
    ExpectSavedElsewhere();
}

TEST_F(FullDisk, KeepsTheWindowFromClosing) {
    Start();
    AddLargeIcon();
    const LibraryContent content = OpenContent();
    ExpectSaveQuestion(QMessageBox::Yes);
    ExpectSaveDialog(OnDisk("new.Atlavex"));
    Expecting().ExpectBox(NoSpace(OnDisk("new.Atlavex")));
    Window().close();
    EXPECT_TRUE(Window().isVisible());
    ExpectStill(content, {});
    ExpectSaveQuestion(QMessageBox::Yes);
    ExpectSaveDialog(PathOf("elsewhere.Atlavex"));
    Window().close();
    EXPECT_FALSE(Window().isVisible());
    EXPECT_EQ(Open(PathOf("elsewhere.Atlavex"))->IconCount(), 1);
}

TEST_F(FullDisk, TakesNoSaveUnderAnotherName) {
    const std::string file = MakeLibrary("a.Atlavex", {{700, 600}}, 1);
    Start();
    OpenByMenu(file);
    Edit();
    const LibraryContent content = OpenContent();
    ExpectSaveDialog(OnDisk("copy.Atlavex"));
    Expecting().ExpectBox(NoSpace(OnDisk("copy.Atlavex")));
    Choose("mFileSaveAtlavexAs");
    ExpectStill(content, file);
    EXPECT_TRUE(Names(disk_.Path()).empty());
    // The file from which it was opened is still the one that Save writes.
    Choose("mFileSaveAtlavex");
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(IconAt(*Open(file), 1)->OffsetX(), 5);
    ExpectSavedElsewhere();
}

TEST_F(FullDisk, TakesNoSaveInPlace) {
    const std::string file = OnDisk("a.Atlavex");
    std::filesystem::copy_file(MakeLibrary("a.Atlavex", {{60, 50}}, 1), file);
    const std::string bytes = ReadWholeFile(file);
    Start();
    OpenByMenu(file);
    AddLargeIcon();
    const LibraryContent content = OpenContent();
    for (int attempt = 0; attempt < 2; ++attempt) {
        Expecting().ExpectBox(NoSpace(file));
        Choose("mFileSaveAtlavex");
        ExpectStill(content, file);
        EXPECT_EQ(ReadWholeFile(file), bytes);
        EXPECT_EQ(Names(disk_.Path()), std::vector<std::string>{"a.Atlavex"});
    }
    disk_.Resize("size=16m");
    Choose("mFileSaveAtlavex");
    EXPECT_FALSE(State().modified);
    ExpectHolds(file, {}, ContentOf(*State().objAtlavex));
    ExpectSavedElsewhere();
}

TEST_F(FullDisk, TakesNoNewKey) {
    const std::string file = OnDisk("a.Atlavex");
    std::filesystem::copy_file(MakeLibrary("a.Atlavex", {{400, 380}}, 1), file);
    const std::string bytes = ReadWholeFile(file);
    Start();
    OpenByMenu(file);
    EnterKey(QStringLiteral("ab1"));
    const LibraryContent content = OpenContent();
    Expecting().ExpectBox(NoSpace(file));
    Choose("mFileSaveAtlavex");
    ExpectStill(content, file);
    EXPECT_EQ(State().encryptionKey, QStringLiteral("ab1"));
    EXPECT_EQ(ReadWholeFile(file), bytes) << "still whole, and without a key";
    EXPECT_EQ(Names(disk_.Path()), std::vector<std::string>{"a.Atlavex"});
    ExpectSavedElsewhere("ab1");
}

TEST_F(FullDisk, TakesNothingOfAMerge) {
    const std::string other = MakeLibrary("other.Atlavex", {{700, 600}}, 2);
    const std::string file = MakeLibrary("a.Atlavex", {{60, 50}}, 1);
    Start();
    PreferDisk();
    OpenByMenu(file);
    Edit();
    const LibraryContent content = OpenContent();
    const auto map = State().currentMap;
    ExpectMergeDialog(other);
    ExpectNoSpaceOnDisk();
    Choose("mnuMerge");
    ExpectStill(content, file);
    EXPECT_EQ(State().currentMap, map);
    EXPECT_EQ(EntriesOf("ddMaps").size(), 1);
    EXPECT_EQ(EntriesOf("ddIcons").size(), 1);
    disk_.Resize("size=16m");
    ExpectMergeDialog(other);
    Expecting().ExpectBox(QStringLiteral("Merge complete. \r\n1 map(s) added.\r\n2 icon(s) added."));
    Choose("mnuMerge");
    ExpectSavedElsewhere();
}

TEST_F(FullDisk, TakesNoNewMap) {
    const std::string file = MakeLibrary("a.Atlavex", {{60, 50}}, 1);
    Start();
    PreferDisk();
    OpenByMenu(file);
    Edit();
    const LibraryContent content = OpenContent();
    ExpectFileDialog(QStringLiteral("Open new bitmap"), LargeImage());
    Expecting().Expect(QStringLiteral("frmNewMap"), [](QWidget& window) { Click(window, "btnOK"); });
    ExpectNoSpaceOnDisk();
    Choose("mBitmapNew");
    ExpectStill(content, file);
    EXPECT_EQ(EntriesOf("ddMaps").size(), 1);
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(IconAt(*Open(file), 1)->OffsetX(), 5);
    ExpectSavedElsewhere();
}
