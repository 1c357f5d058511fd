#include "platform/modHelp.h"

#include "tests/support/desktop/ModalScript.h"

TEST(Help, OpensThePageOnThisProgramAndSaysNothing) {
    const ModalScript nothing;
    QUrl opened;
    ShowHelp(nullptr, [&](const QUrl& address) {
        opened = address;
        return true;
    });
    EXPECT_EQ(opened.toString(),
              QStringLiteral("https://www.kestova.example/quorvant/guide.asp?section=Studio&ref=app"));
}

TEST(Help, TellsWhereTheGuideIsWhenNoBrowserStarts) {
    ModalScript script;
    script.ExpectBox(
        QStringLiteral("Internet Explorer could not be launched. Please visit "
                       "https://www.kestova.example/quorvant/guide.asp for the Developer's Guide"));
    ShowHelp(nullptr, [](const QUrl&) { return false; });
    EXPECT_TRUE(script.IsDone());
}

TEST(Help, FindsNoBrowserWithoutADesktop) {
    EXPECT_FALSE(OpenInBrowser(QUrl(QStringLiteral("https://www.kestova.example/"))));
}
