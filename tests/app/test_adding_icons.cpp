#include "platform/modRegistry.h"
#include "tests/app/EditingFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

using Pair = std::pair<std::string, std::string>;

class AddingIcons : public EditingTest {};

} // namespace

TEST_F(AddingIcons, AFirstIconMakesALibraryAndIsCurrent) {
    Start();
    ExpectIconFile(ImageNamed("pin.red.png", 16, 12));
    ExpectSettings([](QWidget& window) {
        EXPECT_EQ(window.windowTitle(), QStringLiteral("New icon settings..."));
        EXPECT_EQ(Control<QLineEdit>(window, "tbName").text(), QStringLiteral("pin"));
        EXPECT_EQ(Control<QComboBox>(window, "ddTileWidth").currentText(), QStringLiteral("n/a"));
        EXPECT_FALSE(Control<QComboBox>(window, "ddTileHeight").isEnabled());
        EXPECT_TRUE(Control<QLabel>(window, "lbWarning").isHidden());
        TypeInto(window, "tbDescription", QStringLiteral("A pin"));
        Click(window, "btnOK");
    });
    Choose("mIconsNewIcon");

    ASSERT_NE(State().currentIcon, nullptr);
    const auto metadata = MetadataOf(*State().currentIcon);
    ASSERT_EQ(metadata.size(), 5u);
    EXPECT_EQ(metadata[0], Pair("name", "pin"));
    EXPECT_EQ(metadata[1], Pair("description", "A pin"));
    EXPECT_EQ(metadata[2], Pair("version", "1.0"));
    EXPECT_EQ(metadata[3].first, "created");
    EXPECT_EQ(metadata[4].first, "lastchanged");
    EXPECT_EQ(metadata[4].second.size(), std::string("2026-11-21 16:07:33").size());

    EXPECT_EQ(EntriesOf("ddIcons"), QStringList{"pin"});
    EXPECT_EQ(TextOf("lbSize"), "Icon size: (16, 12)");
    EXPECT_EQ(Page(), 1);
    EXPECT_TRUE(State().modified);
    EXPECT_TRUE(IsEnabled("mIconsDeleteIcon"));
    EXPECT_TRUE(IsEnabled("mFileSaveAtlavex"));
}

TEST_F(AddingIcons, NeedsNoScaledMapAndComesLast) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}}, 2)));
    AddMapByMenu(ImageNamed("map.png"));
    EXPECT_FALSE(State().mapScaled);
    AddIconByMenu(ImageNamed("third.png", 8, 8));
    EXPECT_EQ(EntriesOf("ddIcons"), (QStringList{"icon1", "icon2", "third"}));
    EXPECT_EQ(EntryOf("ddIcons"), 2);
    EXPECT_EQ(State().currentIcon->Name(), "third");
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
}

TEST_F(AddingIcons, CancellingEitherDialogChangesNothing) {
    Start();
    ExpectIconFile(std::nullopt);
    Choose("mIconsNewIcon");
    ExpectIconFile(ImageNamed("a.png"));
    ExpectSettings([](QWidget& window) { Click(window, "btnCancel"); });
    Choose("mIconsNewIcon");
    EXPECT_EQ(State().objAtlavex, nullptr);
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(Page(), 0);
}

TEST_F(AddingIcons, AFailedImportIsToldWithItsNumber) {
    Start();
    WriteWholeFile(PathOf("text.png"), "no image at all");
    ExpectIconFile(PathOf("text.png"));
    ExpectSettings([this](QWidget& window) {
        Expecting().Expect(QStringLiteral("MessageBox"), [this](QWidget& box) {
            const QString text = dynamic_cast<QMessageBox&>(box).text();
            EXPECT_TRUE(text.startsWith(QStringLiteral("40: "))) << text.toStdString();
            EXPECT_TRUE(text.contains(QString::fromStdString(PathOf("text.png")))) << text.toStdString();
            QTest::keyClick(&box, Qt::Key_Return);
        });
        Click(window, "btnOK");
    });
    Choose("mIconsNewIcon");
    EXPECT_EQ(State().objAtlavex->IconCount(), 0);
    EXPECT_EQ(State().currentIcon, nullptr);
    EXPECT_FALSE(State().modified);
}

TEST_F(AddingIcons, TheDialogRemembersItsFolderApartFromTheMaps) {
    Start();
    AddIconByMenu(ImageNamed("a.png"));
    EXPECT_EQ(QueryValue(RootKey::CurrentUser, QStringLiteral("Software\\Kestova\\Brisquent\\NewIcon"),
                         QStringLiteral("FileName"))
                  .toString()
                  .toStdString(),
              PathOf("a.png"));
}
