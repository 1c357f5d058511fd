#include "platform/modHelp.h"

#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/FakeBrowser.h"
#include "tests/support/desktop/ModalScript.h"

#include <QApplication>
#include <QTest>

#include <csignal>

namespace {

const auto Sentence = HelpNotStarted;

const QUrl Address(QStringLiteral("https://www.kestova.example/"));

bool BrowsersAreGone() {
    return QCoreApplication::instance()->findChildren<QObject*>(QStringLiteral("Browser")).isEmpty();
}

} // namespace

TEST(Help, OpensThePageOnThisProgramAndSaysNothing) {
    const ModalScript nothing;
    QUrl opened;
    ShowHelp(nullptr, [&](const QUrl& address, const std::function<void()>&) {
        opened = address;
        return true;
    });
    EXPECT_EQ(opened.toString(),
              QStringLiteral("https://www.kestova.example/quorvant/guide.asp?section=Studio&ref=app"));
}

TEST(Help, TellsWhereTheGuideIsWhenNoBrowserStarts) {
    ModalScript script;
    script.ExpectBox(Sentence);
    ShowHelp(nullptr, [](const QUrl&, const std::function<void()>&) { return false; });
    EXPECT_TRUE(script.IsDone());
}

TEST(Help, TellsItAlsoWhenTheBrowserFailsAfterItsStart) {
    ModalScript script;
    std::function<void()> failLater;
    {
        QWidget form;
        ShowHelp(&form, [&](const QUrl&, const std::function<void()>& failed) {
            failLater = failed;
            return true;
        });
    }
    script.ExpectBox(Sentence);
    failLater(); // when the form that asked is gone
    EXPECT_TRUE(QTest::qWaitFor([&] { return script.IsDone(); }, 60000));
}

TEST(Help, FindsNoBrowserWithoutADesktop) {
    const NoBrowser none;
    EXPECT_FALSE(OpenInBrowser()(Address, [] {}));
}

TEST(Help, WaitsForNoBrowserAndTellsWhenItFailsAWhileLater) {
    const TempFolder folder;
    const std::string go = (folder / "go").string();
    const std::string alone = (folder / "alone").string();
    // Where this program waited for it, nobody would ever let it go on.
    const FakeBrowser browser("for i in $(seq 200); do [ -e '" + go +
                              "' ] && exit 4; sleep 0.1; done; touch '" + alone + "'; exit 4");
    ModalScript script;
    ShowHelp(nullptr, OpenInBrowser(std::chrono::hours(1)));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !browser.Opened().empty(); }, 60000));
    EXPECT_FALSE(BrowsersAreGone());
    script.ExpectBox(Sentence);
    WriteWholeFile(go, "");
    EXPECT_TRUE(QTest::qWaitFor([&] { return script.IsDone(); }, 60000));
    EXPECT_TRUE(QTest::qWaitFor(BrowsersAreGone, 60000));
    EXPECT_FALSE(std::filesystem::exists(alone));
}

TEST(Help, TellsNothingOfABrowserThatFailsTooLate) {
    const ModalScript nothing;
    const FakeBrowser browser("sleep 0.2; exit 4");
    ShowHelp(nullptr, OpenInBrowser(std::chrono::milliseconds(1)));
    EXPECT_TRUE(QTest::qWaitFor(BrowsersAreGone, 60000));
    EXPECT_FALSE(browser.Opened().empty());
    QCoreApplication::processEvents();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(OpenInBrowser::SoonEnough, std::chrono::seconds(10));
}

TEST(Help, LeavesABrowserThatStaysOpenRunning) {
    const TempFolder folder;
    const FakeBrowser browser("echo $$ > '" + (folder / "new").string() + "'; mv '" +
                              (folder / "new").string() + "' '" + (folder / "number").string() +
                              "'; exec sleep 1000");
    bool failed = false;
    EXPECT_TRUE(OpenInBrowser()(Address, [&] { failed = true; }));
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(folder / "number"); }, 60000));
    const pid_t number = std::stoi(ReadWholeFile(folder / "number"));
    // As the end of the program does.
    qDeleteAll(QCoreApplication::instance()->findChildren<QObject*>(QStringLiteral("Browser")));
    EXPECT_EQ(kill(number, 0), 0);
    kill(number, SIGKILL);
    EXPECT_FALSE(failed);
}
