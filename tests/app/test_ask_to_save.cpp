#include "tests/app/UnsavedFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

/// The question before the open library is given up.
class AskToSave : public UnsavedTest {};

} // namespace

TEST_F(AskToSave, HasThreeButtonsYesTheDefaultEscapeCancels) {
    StartWithEdit();
    Expecting().Expect(QStringLiteral("MessageBox"), [](QWidget& window) {
        auto& box = dynamic_cast<QMessageBox&>(window);
        EXPECT_EQ(box.text(), SaveQuestion);
        EXPECT_EQ(box.windowTitle(), QStringLiteral("Quorvant Studio"));
        EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::Yes));
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    Choose("mFileNewAtlavex");
    ExpectLibraryKept();
    EXPECT_TRUE(State().modified);
}

TEST_F(AskToSave, NewAndYesSaves) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::Yes);
    Choose("mFileNewAtlavex");
    EXPECT_EQ(SavedOffset(), 5);
    EXPECT_EQ(State().objAtlavex, nullptr);
    ExpectNothingShown();
}

TEST_F(AskToSave, NewAndNoForgetsTheEdits) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::No);
    Choose("mFileNewAtlavex");
    EXPECT_EQ(SavedOffset(), 0);
    EXPECT_EQ(State().objAtlavex, nullptr);
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(State().fileName, QString());
    EXPECT_EQ(State().rememberedMap, -1);
    EXPECT_EQ(Title(), "Quorvant Studio - ");
    EXPECT_TRUE(EntriesOf("ddMaps").empty());
    EXPECT_TRUE(EntriesOf("ddIcons").empty());
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
}

TEST_F(AskToSave, CancelKeepsLibraryAndFlagButEmptiesTheView) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::Cancel);
    Choose("mFileNewAtlavex");
    ExpectLibraryKept();
    EXPECT_TRUE(State().modified);
    ExpectNothingShown();
}

TEST_F(AskToSave, AfterCancelTheEntryStillShownCanBePickedAgain) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::Cancel);
    Choose("mFileNewAtlavex");
    Pick("ddMaps", 0);
    ASSERT_NE(State().currentMap, nullptr);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 20)");
    EXPECT_NE(Find<KarvelViewer>("viewerMap").Image(), nullptr);
    EXPECT_TRUE(IsEnabled("mBitmapDelete"));
}

TEST_F(AskToSave, OpenAndCancelShowsNoFileDialog) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::Cancel);
    Choose("mFileOpenAtlavex");
    ExpectLibraryKept();
    ExpectNothingShown();
}

TEST_F(AskToSave, OpenAndNoGoesOnToTheFileDialog) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::No);
    ExpectFileDialog(QStringLiteral("Open Atlavex"), std::nullopt);
    Choose("mFileOpenAtlavex");
    ExpectLibraryKept();
    EXPECT_TRUE(State().modified);
    ExpectNothingShown();
}

TEST_F(AskToSave, OpenAndYesSavesFirst) {
    StartWithEdit();
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}});
    ExpectSaveQuestion(QMessageBox::Yes);
    OpenByMenu(other);
    EXPECT_EQ(SavedOffset(), 5);
    EXPECT_EQ(Title(), "Quorvant Studio - " + other);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (25, 35)");
}

TEST_F(AskToSave, IsNotAskedWithoutEditsButTheViewIsEmptied) {
    file_ = MakeLibrary("a.Atlavex", {{20, 20}, {30, 30}}, 1);
    Start();
    OpenByMenu(file_);
    ExpectFileDialog(QStringLiteral("Open Atlavex"), std::nullopt);
    Choose("mFileOpenAtlavex");
    ExpectLibraryKept();
    ExpectNothingShown();
}

TEST_F(AskToSave, YesWithAnUnscaledMapSavesNothingAndStays) {
    Start();
    OpenByMenu(MakeMixedLibrary("a.Atlavex", {false}));
    Expecting().Expect(QStringLiteral("frmMetadata"), [](QWidget& window) {
        TypeInto(window, "tbMetaName", QStringLiteral("renamed"));
        Click(window, "btnOK");
    });
    Choose("mBitmapRename");
    ASSERT_TRUE(State().modified);
    ExpectSaveQuestion(QMessageBox::Yes);
    Expecting().ExpectBox(ScaleBeforeSaving);
    Choose("mFileNewAtlavex");
    EXPECT_NE(State().objAtlavex, nullptr);
    EXPECT_TRUE(State().modified);
    ExpectNothingShown();
}

TEST_F(AskToSave, ASaveThatFailsStaysAndSaysWhy) {
    StartWithEdit();
    {
        const auto other = Open(file_);
        AddIcon(*other, MakeSheet(PixelFormat::Rgba, 8, 8));
        other->SaveToFile(file_, {});
    }
    ExpectSaveQuestion(QMessageBox::Yes);
    Expecting().ExpectBox(QString::fromStdString(
        "The file '" + file_ +
        "' was changed by another program since it was opened. Use Save As to keep your version under "
        "another name."));
    Window().close();
    EXPECT_TRUE(Window().isVisible());
    EXPECT_TRUE(State().modified);
    ExpectLibraryKept();
    // An error ends the command there and then.
    EXPECT_NE(State().currentMap, nullptr);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 20)");
}

TEST_F(AskToSave, WithoutAFileNameYesAsksForOneAndItsCancelStays) {
    Start();
    AddIconByMenu();
    ExpectSaveQuestion(QMessageBox::Yes);
    ExpectSaveDialog(std::nullopt);
    Window().close();
    EXPECT_TRUE(Window().isVisible());
    ExpectSaveQuestion(QMessageBox::Yes);
    ExpectSaveDialog(PathOf("new.Atlavex"));
    Window().close();
    EXPECT_FALSE(Window().isVisible());
    EXPECT_EQ(Open(PathOf("new.Atlavex"))->IconCount(), 1);
}
