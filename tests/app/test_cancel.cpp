#include "tests/app/ProgressFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

/// The Cancel button of the progress dialog.
class Cancelling : public ProgressTest {};

} // namespace

TEST_F(Cancelling, CancelIsDisabledAtOnceAndReachesTheLibraryOnce) {
    OpenSmallLibrary();
    Edit();
    TakeCalls();
    AtFirstProgress([&] {
        QTest::mouseClick(&CancelButton(), Qt::LeftButton);
        EXPECT_FALSE(CancelButton().isEnabled());
        QTest::mouseClick(&CancelButton(), Qt::LeftButton);
        QTest::keyClick(&CancelButton(), Qt::Key_Space);
        EXPECT_EQ(CountOf(TakeCalls(), "CancelOperation"), 1);
    });
    Expecting().Expect(QStringLiteral("MessageBox"), [](QWidget& window) { window.close(); });
    Choose("mFileSaveAtlavex");
    ExpectRestored();
    EXPECT_TRUE(State().modified);
}

TEST_F(Cancelling, ACancelledLoadIsALoadOfNothing) {
    const std::string file = MakeLibrary("b.Atlavex", {{20, 20}}, 1);
    OpenSmallLibrary();
    AtFirstProgress([&] { QTest::mouseClick(&CancelButton(), Qt::LeftButton); });
    ExpectFileDialog(QStringLiteral("Open Atlavex"), file);
    Expecting().ExpectBox(NothingLoaded);
    Choose("mFileOpenAtlavex");
    ExpectRestored();
    EXPECT_EQ(Title(), "Quorvant Studio - " + PathOf("a.Atlavex"));
    EXPECT_TRUE(EntriesOf("ddMaps").empty());
}

TEST_F(Cancelling, ACancelledMergeChangesNothing) {
    const std::string file = MakeLibrary("b.Atlavex", {{20, 20}}, 1);
    OpenSmallLibrary();
    AtFirstProgress([&] { QTest::mouseClick(&CancelButton(), Qt::LeftButton); });
    ExpectMergeDialog(file);
    Expecting().ExpectBox(NothingMerged);
    Choose("mnuMerge");
    ExpectRestored();
    EXPECT_EQ(EntriesOf("ddMaps").size(), 1);
    EXPECT_NE(State().currentMap, nullptr);
}

TEST_F(Cancelling, ACancelledNewKeyLeavesTheOldFileAndCanBeSetAgain) {
    const std::string file = MakeLibrary("big.Atlavex", {{1500, 1200}}, 1);
    const std::string bytes = ReadWholeFile(file);
    Start();
    OpenByMenu(file);
    Expecting().Expect(QStringLiteral("frmAtlavexProperties"), [](QWidget& window) {
        Click(window, "cbEncrypt");
        TypeInto(window, "tbEncryptionKey", QStringLiteral("ab1"));
        Click(window, "btnOK");
    });
    Choose("mnuAtlavexProperties");
    const auto before = Names();
    AtFirstProgress([&] { QTest::mouseClick(&CancelButton(), Qt::LeftButton); });
    Expecting().ExpectBox(QStringLiteral("The operation was cancelled."));
    Choose("mFileSaveAtlavex");
    ExpectRestored();
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(ReadWholeFile(file), bytes);
    EXPECT_EQ(Names(), before);
    Choose("mFileSaveAtlavex");
    EXPECT_FALSE(State().modified);
    ExpectHolds(file, "ab1", ContentOf(*State().objAtlavex));
}

TEST_F(Cancelling, ACancelledFirstSaveLeavesNoFile) {
    const std::string file = MakeLibrary("big.Atlavex", {{1500, 1200}}, 1);
    Start();
    OpenByMenu(file);
    Edit();
    const auto before = Names();
    AtFirstProgress([&] { QTest::mouseClick(&CancelButton(), Qt::LeftButton); });
    ExpectSaveDialog(PathOf("new.Atlavex"));
    Expecting().Expect(QStringLiteral("MessageBox"), [](QWidget& window) {
        EXPECT_NE(dynamic_cast<QMessageBox&>(window).text(), QString());
        QTest::keyClick(&window, Qt::Key_Return);
    });
    Choose("mFileSaveAtlavexAs");
    ExpectRestored();
    EXPECT_EQ(Names(), before);
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_NE(State().currentMap, nullptr);
}
