#include "dialogs/frmAbout.h"

#include "platform/LinkLabel.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ModalScript.h"

namespace {

class About : public testing::Test {
protected:
    void SetUp() override {
        window_.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }

    QList<QUrl> opened_;
    frmAbout window_{nullptr, [this](const QUrl& address, const std::function<void()>&) {
                         opened_.append(address);
                         return true;
                     }};
};

} // namespace

TEST_F(About, NamesTheProgramAndItsVersion) {
    EXPECT_EQ(Control<QLabel>(window_, "lbVersion").text(), QStringLiteral("Quorvant Studio v2.31.0"));
}

TEST_F(About, ClosesOnEscapeEnterAndOK) {
    QTest::keyClick(&window_, Qt::Key_Escape);
    EXPECT_FALSE(window_.isVisible());
    window_.show();
    QTest::keyClick(&window_, Qt::Key_Return);
    EXPECT_FALSE(window_.isVisible());
    window_.show();
    Click(window_, "btnOK");
    EXPECT_FALSE(window_.isVisible());
}

TEST_F(About, OpensTheGuideByClickAndByKey) {
    auto* const link = &Control<LinkLabel>(window_, "lURL");
    EXPECT_EQ(link->text(), QStringLiteral("Help"));
    QTest::mouseClick(link, Qt::LeftButton);
    link->setFocus();
    QTest::keyClick(link, Qt::Key_Space);
    QTest::keyClick(link, Qt::Key_Return);
    EXPECT_EQ(opened_.size(), 3);
    EXPECT_EQ(opened_.value(0).path(), QStringLiteral("/quorvant/guide.asp"));
    EXPECT_TRUE(window_.isVisible()) << "Enter on the link is the link's";
}

TEST_F(About, IgnoresOtherButtonsAndAReleaseBesideTheLink) {
    auto* const link = &Control<LinkLabel>(window_, "lURL");
    QTest::mouseClick(link, Qt::RightButton);
    QTest::mousePress(link, Qt::LeftButton);
    QTest::mouseRelease(link, Qt::LeftButton, {}, QPoint(-5, -5));
    EXPECT_TRUE(opened_.isEmpty());
}

TEST_F(About, IsWalkedThroughByTab) {
    EXPECT_TRUE(Control<QPushButton>(window_, "btnOK").hasFocus());
    QTest::keyClick(&window_, Qt::Key_Tab);
    EXPECT_TRUE(Control<LinkLabel>(window_, "lURL").hasFocus());
    QTest::keyClick(&window_, Qt::Key_Tab);
    EXPECT_TRUE(Control<QPushButton>(window_, "btnOK").hasFocus());
}
