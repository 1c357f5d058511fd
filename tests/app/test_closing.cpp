#include "tests/app/UnsavedFixture.h"

namespace {

/// The end of the program, by the menu and by the window.
class Closing : public UnsavedTest {};

} // namespace

TEST_F(Closing, ExitAsksTwiceAfterNo) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::No);
    ExpectSaveQuestion(QMessageBox::No);
    Choose("mFileExit");
    EXPECT_FALSE(Window().isVisible());
    EXPECT_EQ(SavedOffset(), 0);
}

TEST_F(Closing, TheSecondQuestionOfExitCanStillBeCancelled) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::No);
    ExpectSaveQuestion(QMessageBox::Cancel);
    Choose("mFileExit");
    EXPECT_TRUE(Window().isVisible());
    ExpectLibraryKept();
}

TEST_F(Closing, ExitAsksOnceAfterYes) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::Yes);
    Choose("mFileExit");
    EXPECT_FALSE(Window().isVisible());
    EXPECT_EQ(SavedOffset(), 5);
}

TEST_F(Closing, ExitAndCancelStaysAndKeepsTheLimits) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::Cancel);
    Choose("mFileExit");
    EXPECT_TRUE(Window().isVisible());
    EXPECT_EQ(Window().minimumSize(), QSize(640, 400));
}

TEST_F(Closing, ExitWithoutEditsAsksNothing) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    Choose("mFileExit");
    EXPECT_FALSE(Window().isVisible());
}

TEST_F(Closing, TheCloseButtonAsksOnce) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::No);
    Window().close();
    EXPECT_FALSE(Window().isVisible());
    EXPECT_EQ(SavedOffset(), 0);
}

TEST_F(Closing, TheCloseButtonAndYesSaves) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::Yes);
    Window().close();
    EXPECT_FALSE(Window().isVisible());
    EXPECT_EQ(SavedOffset(), 5);
}

TEST_F(Closing, TheCloseButtonAndCancelStaysWithoutLimitsForGood) {
    StartWithEdit();
    ExpectSaveQuestion(QMessageBox::Cancel);
    Window().close();
    EXPECT_TRUE(Window().isVisible());
    ExpectLibraryKept();
    ExpectNothingShown();
    EXPECT_EQ(Window().minimumSize(), QSize(0, 0));
    EXPECT_EQ(Window().maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    ExpectSaveQuestion(QMessageBox::Cancel);
    Window().close();
    EXPECT_EQ(Window().minimumSize(), QSize(0, 0));
}

TEST_F(Closing, IsRefusedWhileADialogIsOpen) {
    StartWithEdit();
    for (const auto& [entry, form] :
         {std::pair("mFilePreferences", "frmPreferences"), std::pair("mIconsOffset", "frmOffset"),
          std::pair("mnuMapMetaData", "frmMetadata"), std::pair("mHelpAbout", "frmAbout")}) {
        Expecting().Expect(QLatin1String(form), [this](QWidget& dialog) {
            Window().close();
            Find<QAction>("mFileExit").trigger();
            EXPECT_TRUE(Window().isVisible());
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(Window().minimumSize(), QSize(640, 400));
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        Choose(entry);
    }
    EXPECT_TRUE(Window().isVisible());
    ExpectSaveQuestion(QMessageBox::No);
    Window().close();
    EXPECT_FALSE(Window().isVisible());
}
