#include "tests/app/ShellFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/FakeBrowser.h"

namespace {

class GuideOfTheWindow : public ShellTest {
protected:
    void ExpectSentence() { Expecting().ExpectBox(HelpNotStarted); }
    /// Until the box that was expected has come; the window answers meanwhile.
    bool SentenceCame() {
        return QTest::qWaitFor([this] { return Expecting().IsDone(); }, 60000);
    }
};

constexpr const char* Page = "https://www.kestova.example/quorvant/guide.asp?section=Studio&ref=app\n";

} // namespace

TEST_F(GuideOfTheWindow, IsOpenedByF1AndByTheMenu) {
    const FakeBrowser browser("exit 0");
    Start();
    QTest::keyClick(&Window(), Qt::Key_F1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return browser.Opened() == Page; }, 60000)) << browser.Opened();
    Choose("mHelpGuide");
    EXPECT_TRUE(QTest::qWaitFor([&] { return browser.Opened() == std::string(Page) + Page; }, 60000))
        << browser.Opened();
}

TEST_F(GuideOfTheWindow, IsNamedWhenNoBrowserStarts) {
    const NoBrowser none;
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    const auto map = State().currentMap;
    ExpectSentence();
    Choose("mHelpGuide");
    EXPECT_EQ(State().currentMap, map);
}

TEST_F(GuideOfTheWindow, IsNamedWhenTheBrowserEndsWithAFailure) {
    for (const char* const failure : {"exit 3", "kill -KILL $$"}) {
        const FakeBrowser browser(failure);
        Start();
        Choose("mHelpGuide");
        ExpectSentence();
        EXPECT_TRUE(SentenceCame()) << failure;
        EXPECT_EQ(browser.Opened(), Page);
    }
}

TEST_F(GuideOfTheWindow, IsNamedOverWhateverDialogIsOpenByThen) {
    const FakeBrowser browser("while [ ! -e go ]; do sleep 0.1; done; exit 3");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(PathOf("."));
    Start();
    Choose("mHelpGuide");
    Expecting().Expect(QStringLiteral("frmAbout"), [this](QWidget& about) {
        ExpectSentence();
        WriteWholeFile("go", "");
        EXPECT_TRUE(SentenceCame());
        QTest::keyClick(&about, Qt::Key_Escape);
    });
    Choose("mHelpAbout");
    std::filesystem::current_path(before);
}
