#include "dialogs/frmPreferences.h"

#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ModalScript.h"

namespace {

class Preferences : public testing::Test {
protected:
    void SetUp() override { Show(); }

    void Show() {
        window_.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }
    std::string Shown(const char* combo) {
        return Control<QComboBox>(window_, combo).currentText().toStdString();
    }
    /// By the keyboard, as a user does.
    void Pick(const char* combo, const char* text) {
        auto* const list = &Control<QComboBox>(window_, combo);
        QTest::keyClick(list, Qt::Key_Home);
        while (list->currentText() != QLatin1String(text) && list->currentIndex() < list->count() - 1)
            QTest::keyClick(list, Qt::Key_Down);
        ASSERT_EQ(Shown(combo), text);
    }
    void Click(const char* button) {
        auto* const clicked = &Control<QAbstractButton>(window_, button);
        // A wide option button is clicked on its mark.
        QTest::mouseClick(clicked, Qt::LeftButton, {}, QPoint(8, clicked->height() / 2));
    }

    frmPreferences window_;
};

} // namespace

TEST_F(Preferences, OpenWithThePrescribedControls) {
    EXPECT_EQ(window_.windowTitle(), QStringLiteral("Quorvant Studio Preferences"));
    EXPECT_EQ(Control<QGroupBox>(window_, "fTileSize").title(), QStringLiteral("Tile size"));
    EXPECT_EQ(
        Control<QGroupBox>(window_, "fTileSize").findChild<QLabel*>(QStringLiteral("lbTileSize"))->text(),
        QStringLiteral("Size of tiles in Atlavex files. Note: Only 256 is compatible with Atlavex 1.x"));
    EXPECT_EQ(Control<QLabel>(window_, "lbSegWidth").text(), QStringLiteral("Width:"));
    EXPECT_EQ(Control<QLabel>(window_, "lbHeight").text(), QStringLiteral("Height:"));
    EXPECT_EQ(Control<QGroupBox>(window_, "fDegreeSelection").title(),
              QStringLiteral("Degree representation"));
    EXPECT_EQ(Control<QRadioButton>(window_, "rbDegrees").text(), QStringLiteral("Degrees"));
    EXPECT_EQ(Control<QRadioButton>(window_, "rbRadians").text(), QStringLiteral("Radians"));
    EXPECT_EQ(Control<QGroupBox>(window_, "fTempPath").title(), QStringLiteral("Temporary directory"));
    EXPECT_EQ(Control<QLineEdit>(window_, "txtTempPath").text(), QStringLiteral("Windows Temp Directory"));
    EXPECT_EQ(Control<QPushButton>(window_, "btnTempPath").text(), QStringLiteral("..."));
    EXPECT_EQ(Control<QPushButton>(window_, "btnOK").text(), QStringLiteral("OK"));
    EXPECT_EQ(Control<QPushButton>(window_, "btnCancel").text(), QStringLiteral("Cancel"));
}

TEST_F(Preferences, OfferFiveTileSizesAnd256AtFirst) {
    for (const char* const combo : {"ddTileWidth", "ddTileHeight"}) {
        QStringList sizes;
        for (int i = 0; i < Control<QComboBox>(window_, combo).count(); ++i)
            sizes.append(Control<QComboBox>(window_, combo).itemText(i));
        EXPECT_EQ(sizes.join(u' ').toStdString(), "64 128 256 512 1024");
        EXPECT_EQ(Shown(combo), "256");
        EXPECT_FALSE(Control<QComboBox>(window_, combo).isEditable());
    }
    EXPECT_EQ(window_.TileWidth(), QStringLiteral("256"));
    EXPECT_EQ(window_.TileHeight(), QStringLiteral("256"));
    EXPECT_FALSE(window_.Radians());
    EXPECT_FALSE(window_.OK());
}

TEST_F(Preferences, SelectTheUsualSizeIndependentlyWhereNoneIsSelected) {
    Pick("ddTileHeight", "64");
    window_.hide();
    Control<QComboBox>(window_, "ddTileWidth").setCurrentIndex(-1);
    Show();
    EXPECT_EQ(Shown("ddTileWidth"), "256");
    EXPECT_EQ(Shown("ddTileHeight"), "64");
}

TEST_F(Preferences, TakeWidthAndHeightIndependently) {
    Pick("ddTileWidth", "64");
    Pick("ddTileHeight", "1024");
    Click("btnOK");
    EXPECT_FALSE(window_.isVisible());
    EXPECT_TRUE(window_.OK());
    EXPECT_EQ(window_.TileWidth(), QStringLiteral("64"));
    EXPECT_EQ(window_.TileHeight(), QStringLiteral("1024"));
}

TEST_F(Preferences, FollowTheOptionButtonsAtOnce) {
    Click("rbRadians");
    EXPECT_TRUE(window_.RadiansChosen());
    EXPECT_FALSE(window_.Radians()) << "not before OK";
    Click("rbDegrees");
    EXPECT_FALSE(window_.RadiansChosen());
    Control<QRadioButton>(window_, "rbDegrees").setFocus();
    QTest::keyClick(&Control<QRadioButton>(window_, "rbDegrees"), Qt::Key_Right);
    EXPECT_TRUE(window_.RadiansChosen()) << "the arrow keys choose, too";
    Click("btnOK");
    EXPECT_TRUE(window_.Radians());
}

TEST_F(Preferences, KeepTheirControlsButChangeNothingAfterCancel) {
    Pick("ddTileWidth", "512");
    Click("rbRadians");
    Control<QLineEdit>(window_, "txtTempPath").setText(QStringLiteral("/tmp"));
    Click("btnCancel");
    EXPECT_FALSE(window_.isVisible());
    EXPECT_FALSE(window_.OK());
    EXPECT_EQ(window_.TileWidth(), QStringLiteral("256"));
    EXPECT_FALSE(window_.Radians());
    EXPECT_EQ(window_.TemporaryFolder(), QStringLiteral("Windows Temp Directory"));
    Show();
    EXPECT_EQ(Shown("ddTileWidth"), "512");
    EXPECT_TRUE(Control<QRadioButton>(window_, "rbRadians").isChecked());
    EXPECT_EQ(Control<QLineEdit>(window_, "txtTempPath").text(), QStringLiteral("/tmp"));
    Click("btnOK");
    EXPECT_EQ(window_.TileWidth(), QStringLiteral("512"));
    EXPECT_EQ(window_.TemporaryFolder(), QStringLiteral("/tmp"));
}

TEST_F(Preferences, EndAsCancelOnEscapeAndTheCloseButton) {
    Click("btnOK");
    ASSERT_TRUE(window_.OK());
    Show();
    QTest::keyClick(&window_, Qt::Key_Escape);
    EXPECT_FALSE(window_.isVisible());
    EXPECT_FALSE(window_.OK());
    Show();
    Click("btnOK");
    Show();
    EXPECT_TRUE(window_.close());
    EXPECT_FALSE(window_.OK());
}

TEST_F(Preferences, EndAsOKOnEnterInTheFolderField) {
    auto* const folder = &Control<QLineEdit>(window_, "txtTempPath");
    folder->setFocus();
    folder->selectAll();
    QTest::keyClicks(folder, QStringLiteral("/var/tmp"));
    QTest::keyClick(folder, Qt::Key_Return);
    EXPECT_FALSE(window_.isVisible());
    EXPECT_TRUE(window_.OK());
    EXPECT_EQ(window_.TemporaryFolder(), QStringLiteral("/var/tmp"));
}

TEST_F(Preferences, TellTheirCallerHowTheyEnded) {
    window_.hide();
    ModalScript script;
    script.Expect(QStringLiteral("frmPreferences"), [this](QWidget& window) {
        EXPECT_EQ(&window, &window_);
        EXPECT_TRUE(window.isModal());
        Click("btnOK");
    });
    window_.exec();
    EXPECT_TRUE(window_.OK());
    EXPECT_TRUE(script.IsDone());
}

TEST_F(Preferences, DoNothingOnTheButtonBesideTheFolder) {
    ModalScript script;
    Click("btnTempPath");
    QTest::qWait(20);
    EXPECT_TRUE(window_.isVisible());
    EXPECT_EQ(Control<QLineEdit>(window_, "txtTempPath").text(), QStringLiteral("Windows Temp Directory"));
}

TEST_F(Preferences, AreWalkedThroughByTab) {
    for (const char* const name : {"ddTileWidth", "ddTileHeight", "rbDegrees", "txtTempPath", "btnTempPath",
                                   "btnOK", "btnCancel", "ddTileWidth"}) {
        ASSERT_NE(window_.focusWidget(), nullptr);
        EXPECT_EQ(window_.focusWidget()->objectName().toStdString(), name);
        QTest::keyClick(window_.focusWidget(), Qt::Key_Tab);
    }
}
