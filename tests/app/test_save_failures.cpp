#include "tests/app/ShellFixture.h"
#include "tests/component/OtherProgram.h"
#include "tests/support/MountedDisk.h"

namespace {

/// Saving where it cannot be done.
class SavingFails : public ShellTest {
protected:
    /// A library with something to save is open.
    void StartWithEdit() {
        file_ = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
        Start();
        OpenByMenu(file_);
        Edit();
    }
    void ExpectUnsaved() {
        EXPECT_TRUE(State().modified);
        EXPECT_EQ(Title(), "Quorvant Studio - " + file_);
        EXPECT_EQ(State().fileName.toStdString(), file_);
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        EXPECT_TRUE(Window().isEnabled());
        EXPECT_NE(State().currentMap, nullptr);
    }
    void ExpectMessageNaming(const std::string& text) {
        Expecting().Expect(QStringLiteral("MessageBox"), [text](QWidget& window) {
            const auto& box = dynamic_cast<QMessageBox&>(window);
            EXPECT_THAT(box.text().toStdString(), testing::HasSubstr(text));
            EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
            QTest::keyClick(&window, Qt::Key_Return);
        });
    }

    std::string file_;
};

} // namespace

TEST_F(SavingFails, InAFolderThatIsNotThere) {
    StartWithEdit();
    ExpectSaveDialog(PathOf("gone/x.Atlavex"));
    ExpectMessageNaming("Directory not found");
    // The dialog comes again, with what was typed.
    Expecting().Expect(QStringLiteral("FileDialog"),
                       [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    Choose("mFileSaveAtlavexAs");
    ExpectUnsaved();
}

TEST_F(SavingFails, InAFolderThatNobodyMayWriteTo) {
    StartWithEdit();
    // A folder of the system's own, where not even root makes files.
    ExpectSaveDialog("/proc/self/x.Atlavex");
    ExpectMessageNaming("x.Atlavex' could not be written: ");
    Choose("mFileSaveAtlavexAs");
    ExpectUnsaved();
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(IconAt(*Open(file_), 1)->OffsetX(), 5);
}

TEST_F(SavingFails, WhenAnotherProgramHasChangedTheFileAndSaveAsIsTheWayOut) {
    StartWithEdit();
    {
        const auto other = Open(file_);
        AddIcon(*other, MakeSheet(PixelFormat::Rgba, 8, 8));
        other->SaveToFile(file_, {});
    }
    ExpectMessageNaming("was changed by another program since it was opened. Use Save As to keep");
    Choose("mFileSaveAtlavex");
    ExpectUnsaved();
    EXPECT_EQ(Open(file_)->IconCount(), 2);
    ExpectSaveDialog(PathOf("mine.Atlavex"));
    Choose("mFileSaveAtlavexAs");
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(IconAt(*Open(PathOf("mine.Atlavex")), 1)->OffsetX(), 5);
}

TEST_F(SavingFails, WhileAnotherProgramHoldsTheFile) {
    StartWithEdit();
    {
        const LockingProgram other(file_);
        ExpectMessageNaming(file_);
        Choose("mFileSaveAtlavex");
        ExpectUnsaved();
    }
    Choose("mFileSaveAtlavex");
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(IconAt(*Open(file_), 1)->OffsetX(), 5);
}

TEST_F(SavingFails, WhenTheFileIsGoneAndSaveAsIsTheWayOut) {
    StartWithEdit();
    std::filesystem::remove(file_);
    ExpectMessageNaming("was removed by another program since it was opened. Use Save As to keep");
    Choose("mFileSaveAtlavex");
    ExpectUnsaved();
    EXPECT_FALSE(std::filesystem::exists(file_));
    ExpectSaveDialog(PathOf("kept.Atlavex"));
    Choose("mFileSaveAtlavexAs");
    EXPECT_FALSE(State().modified);
    Edit(QStringLiteral("6"));
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(IconAt(*Open(PathOf("kept.Atlavex")), 1)->OffsetX(), 6);
}

TEST_F(SavingFails, NotBySaveAsUnderTheNameOfAFileThatIsGone) {
    StartWithEdit();
    std::filesystem::remove(file_);
    ExpectSaveDialog(file_);
    Choose("mFileSaveAtlavexAs");
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(IconAt(*Open(file_), 1)->OffsetX(), 5);
    Edit(QStringLiteral("6"));
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(IconAt(*Open(file_), 1)->OffsetX(), 6);
}

TEST_F(SavingFails, WhenAnotherProgramRemovedAMapUntilThatIsDeletedHere) {
    file_ = MakeLibrary("a.Atlavex", {{200, 200}, {900, 800}}, 1);
    Start();
    OpenByMenu(file_);
    Edit();
    std::string name;
    {
        const auto other = Open(file_);
        name = MapAt(*other, 1)->Name();
        other->RemoveMap(other->MapIdAt(1));
        other->SaveToFile(file_, {});
    }
    ExpectMessageNaming("Use Save As to keep");
    Choose("mFileSaveAtlavex");
    ExpectSaveDialog(PathOf("mine.Atlavex"));
    ExpectMessageNaming("have no pixels in it any more: map '" + name +
                        "'. Delete them, then the rest can be saved.");
    Choose("mFileSaveAtlavexAs");
    ExpectUnsaved();
    EXPECT_FALSE(std::filesystem::exists(PathOf("mine.Atlavex")));
    Expecting().ExpectBox(QString::fromStdString("Are you sure you want to delete '" + name + "' map?"),
                          QMessageBox::Yes);
    Choose("mBitmapDelete");
    ExpectSaveDialog(PathOf("mine.Atlavex"));
    Choose("mFileSaveAtlavexAs");
    EXPECT_FALSE(State().modified);
    const auto saved = Open(PathOf("mine.Atlavex"));
    EXPECT_EQ(saved->MapCount(), 1);
    EXPECT_EQ(IconAt(*saved, 1)->OffsetX(), 5);
    EXPECT_TRUE(saved->Verify().empty());
}

TEST_F(SavingFails, OnADiskThatIsReadOnly) {
    const MountedDisk disk(PathOf("disk"), "size=4m");
    file_ = (disk / "a.Atlavex").string();
    std::filesystem::copy_file(MakeLibrary("a.Atlavex", {{20, 20}}, 1), file_);
    disk.MakeReadOnly();
    Start();
    OpenByMenu(file_);
    Edit();
    ExpectMessageNaming("The file '" + file_ +
                        "' is read-only. Use Save As to keep your version under another name.");
    Choose("mFileSaveAtlavex");
    ExpectUnsaved();
    ExpectSaveDialog((disk / "b.Atlavex").string());
    ExpectMessageNaming("b.Atlavex' could not be written: ");
    Choose("mFileSaveAtlavexAs");
    ExpectUnsaved();
    ExpectSaveDialog(PathOf("elsewhere.Atlavex"));
    Choose("mFileSaveAtlavexAs");
    EXPECT_EQ(IconAt(*Open(PathOf("elsewhere.Atlavex")), 1)->OffsetX(), 5);
}

TEST_F(SavingFails, NotAfterAFailedOpenButTheReplacedFileIsKept) {
    StartWithEdit();
    Choose("mFileSaveAtlavex");
    WriteWholeFile(PathOf("text"), "no library, only some words of text to read\n");
    ExpectFileDialog(QStringLiteral("Open Atlavex"), PathOf("text"));
    ExpectMessageNaming("is not a map library.");
    Choose("mFileOpenAtlavex");
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(Open(file_)->MapCount(), 0);
    EXPECT_EQ(Open(file_ + ".bak")->MapCount(), 1);
}
