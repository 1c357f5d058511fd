#include "tests/app/ShellFixture.h"

#include <QDesktopServices>

namespace {

/// Takes the place of the user's browser.
class Browser : public QObject {
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "Open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }
    const QList<QUrl>& Opened() const { return opened_; }

public Q_SLOTS:
    void Open(const QUrl& address) { opened_.append(address); }

private:
    QList<QUrl> opened_;
};

class GuideOfTheWindow : public ShellTest {};

const auto Page = QStringLiteral("https://www.kestova.example/quorvant/guide.asp");

} // namespace

TEST_F(GuideOfTheWindow, IsOpenedByTheMenuAndByF1) {
    const Browser browser;
    Start();
    Choose("mHelpGuide");
    QTest::keyClick(&Window(), Qt::Key_F1);
    const QUrl wanted(Page + QStringLiteral("?section=Studio&ref=app"));
    EXPECT_EQ(browser.Opened(), QList<QUrl>({wanted, wanted}));
}

TEST_F(GuideOfTheWindow, IsNamedWhenNoBrowserStarts) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    const auto map = State().currentMap;
    Expecting().ExpectBox(QStringLiteral("Internet Explorer could not be launched. Please visit ") + Page +
                          QStringLiteral(" for the Developer's Guide"));
    Choose("mHelpGuide");
    EXPECT_EQ(State().currentMap, map);
}

#include "test_help.moc"
