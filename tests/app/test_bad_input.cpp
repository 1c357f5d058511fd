// Images, names and texts that nobody should have made, through the menus and dialogs.

#include "platform/modFields.h"
#include "tests/app/EditingFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

using namespace std::string_literals;

/// A Windows bitmap that promises 24-bit pixels of this size and has none.
std::string EmptyBmp(const std::string& width, const std::string& height) {
    return "BM\x36\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"s + width + height +
           "\x01\0\x18\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s;
}

class BadImages : public EditingTest {
protected:
    BadImages() {
        const std::string png = ReadWholeFile(ImageOf(MakeSheet(PixelFormat::Rgb, 60, 50)));
        std::string wide = png;
        wide.replace(16, 4, "\x7f\xff\xff\xff"); // the first chunk's width
        images_ = {{"empty.bmp", ""},
                   {"empty.gif", ""},
                   {"empty.jpg", ""},
                   {"empty.tif", ""},
                   {"empty.png", ""},
                   {"text.png", "a text that is no image"},
                   {"begun.png", png.substr(0, png.size() / 2)},
                   {"signature.png", png.substr(0, 8)},
                   {"wide.png", wide},
                   {"huge.bmp", EmptyBmp("\xff\xff\xff\x7f"s, "\xff\xff\xff\x7f"s)},
                   {"nothing-behind.bmp", EmptyBmp("\xe8\x03\0\0"s, "\xe8\x03\0\0"s)},
                   {"no-size.bmp", EmptyBmp("\0\0\0\0"s, "\0\0\0\0"s)},
                   {"no-frame.gif", "GIF89a\xff\xff\xff\xff\0\0\0\x3b"s},
                   {"huge.jpg", "\xff\xd8\xff\xc0\0\x0b\x08\xff\xdc\xff\xdc\x01\x01\x11\0\xff\xd9"s},
                   {"past-its-end.tif", "II*\0\xf0\xff\xff\x7f"s},
                   {"in-a-ring.tif", "II*\0\x08\0\0\0\0\0\x08\0\0\0"s}};
    }

    /// Adds each by the menu entry, which has to say its number and name it, and to change nothing.
    void ExpectEachRefused(const char* menuEntry, const QString& dialogTitle) {
        Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}}, 1)));
        const auto entries = EnabledEntries();
        for (const auto& [name, bytes] : images_) {
            const std::string file = PathOf(name);
            WriteWholeFile(file, bytes);
            ExpectFileDialog(dialogTitle, file);
            ExpectSettingsAccepted();
            Expecting().Expect(QStringLiteral("MessageBox"), [&file](QWidget& window) {
                const auto& box = dynamic_cast<QMessageBox&>(window);
                EXPECT_THAT(box.text().toStdString(), testing::MatchesRegex("4[012]: .+\\."));
                EXPECT_THAT(box.text().toStdString(), testing::HasSubstr(file));
                EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
                QTest::keyClick(&window, Qt::Key_Return);
            });
            Choose(menuEntry);
            EXPECT_TRUE(Expecting().IsDone()) << name << " was taken";
            EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        }
        EXPECT_EQ(State().objAtlavex->MapCount(), 1);
        EXPECT_EQ(State().objAtlavex->IconCount(), 1);
        EXPECT_FALSE(State().modified);
        EXPECT_TRUE(State().mapScaled);
        EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 20)");
        EXPECT_EQ(EnabledEntries(), entries);
    }

private:
    std::vector<std::pair<std::string, std::string>> images_;
};

class BadTexts : public EditingTest {
protected:
    /// Adds a map of this name and description that a worldfile scales, and an icon.
    void AddUnder(const QString& name) {
        const auto describe = [name](QWidget& window) {
            Control<QLineEdit>(window, "tbName").setText(name);
            Control<QLineEdit>(window, "tbDescription").setText(name);
            Click(window, "btnOK");
        };
        WriteWholeFile(PathOf("photo.tfw"), "2\n0\n0\n-2\n500000\n6000000\n");
        ExpectMapFile(ImageNamed("photo.tif"));
        ExpectSettings(describe);
        Expecting().ExpectBox(WorldfileFound, QMessageBox::Yes);
        Expecting().Expect(QStringLiteral("frmSelectWorldfileGrid"), [](QWidget& window) {
            auto& countries = Control<QComboBox>(window, "ddCountry");
            countries.setCurrentIndex(countries.findText(QStringLiteral("International")));
            Q_EMIT countries.activated(countries.currentIndex());
            TypeInto(window, "txtZone", QStringLiteral("32"));
            Click(window, "bNext");
        });
        Choose("mBitmapNew");
        ExpectIconFile(ImageNamed("pin.png"));
        ExpectSettings(describe);
        Choose("mIconsNewIcon");
    }

    void SaveAndReopen(const std::string& file) {
        ExpectFileDialog(QStringLiteral("Save Atlavex As"), file);
        Choose("mFileSaveAtlavex");
        EXPECT_FALSE(State().modified);
        Start(QString::fromStdString(file));
        ASSERT_NE(State().currentMap, nullptr);
        ASSERT_NE(State().currentIcon, nullptr);
    }

    void ExpectExportInto(const std::string& folderName) {
        Expecting().Expect(QStringLiteral("frmExport"), [this](QWidget& window) {
            TypeInto(window, "tbExportTo", QString::fromStdString(PathOf("tiles")));
            Expecting().ExpectBox(ExportCompleted);
            Click(window, "btnExport");
        });
        Choose("mnuTileExport");
        EXPECT_TRUE(std::filesystem::exists(PathOf("tiles/" + folderName + "/index.html"))) << folderName;
    }
};

} // namespace

TEST_F(BadImages, AreRefusedAsMapsWithTheirNumberAndName) {
    ExpectEachRefused("mBitmapNew", QStringLiteral("Open new bitmap"));
}

TEST_F(BadImages, AreRefusedAsIconsWithTheirNumberAndName) {
    ExpectEachRefused("mIconsNewIcon", QStringLiteral("Open new icon"));
}

TEST_F(BadImages, GoneBeforeTheirSettingsAreAcceptedAreRefused) {
    Start();
    const std::string file = ImageNamed("gone.png");
    ExpectMapFile(file);
    ExpectSettings([file](QWidget& window) {
        std::filesystem::remove(file);
        Click(window, "btnOK");
    });
    Expecting().ExpectBox(
        QString::fromStdString("20: The image '" + file + "' could not be read: there is no such file."));
    Choose("mBitmapNew");
    EXPECT_EQ(State().objAtlavex->MapCount(), 0);
}

TEST_F(BadTexts, AsNamesAreKeptShownAndMadeFoldersOf) {
    const std::vector<std::pair<QString, std::string>> names{
        {QStringLiteral(""), ""},
        {QStringLiteral("   "), ""},
        {QStringLiteral(" ?!/ \\*:| "), "?!/ \\*:|"},
        {QStringLiteral("\"double\" and 'single'"), "\"double\" and 'single'"},
        {QStringLiteral("../../up/C:\\down"), "../../up/C:\\down"},
        {QStringLiteral("two\nlines\r\nand\ta tab"), "two\nlines\r\nand\ta tab"},
        {QStringLiteral("\u202eright to left\u2069 \u05d0\u05d1"), "\u202eright to left\u2069 \u05d0\u05d1"},
        {QStringLiteral("\U0001F5FA\uFE0F\U0001F468\u200D\U0001F33E"),
         "\U0001F5FA\uFE0F\U0001F468\u200D\U0001F33E"},
        {QStringLiteral("<b>bold</b> &amp; %1 %s [*]"), "<b>bold</b> &amp; %1 %s [*]"},
        {QStringLiteral("_x"), "_x"}};
    for (const auto& [name, exported] : names) {
        SCOPED_TRACE(name.toStdString());
        Start();
        AddUnder(name);
        SaveAndReopen(PathOf("named.Atlavex"));
        EXPECT_EQ(State().currentMap->Name(), name.toStdString());
        EXPECT_EQ(State().currentMap->GetMetadata("description"), name.toStdString());
        EXPECT_EQ(State().currentIcon->Name(), name.toStdString());
        EXPECT_EQ(EntriesOf("ddMaps"), QStringList{OneLine(name)});
        EXPECT_EQ(EntriesOf("ddIcons"), QStringList{OneLine(name)});
        // One "_" for each character that a folder of every system may not have.
        std::string safe;
        for (const char32_t character : QString::fromStdString(exported).toStdU32String())
            safe += character < 128 && (std::isalnum(static_cast<int>(character)) != 0 || character == U'.' ||
                                        character == U'-')
                        ? static_cast<char>(character)
                        : '_';
        ExpectExportInto(State().currentMap->Identifier() + "_" + safe);
        Expecting().ExpectBox(QStringLiteral("Are you sure you want to delete '") + name +
                                  QStringLiteral("' Icon?"),
                              QMessageBox::Yes);
        Choose("mIconsDeleteIcon");
        Expecting().ExpectBox(QStringLiteral("Are you sure you want to delete '") + name +
                                  QStringLiteral("' map?"),
                              QMessageBox::Yes);
        Choose("mBitmapDelete");
        std::filesystem::remove(PathOf("named.Atlavex"));
    }
}

TEST_F(BadTexts, OfAMegabyteAreKept) {
    const QString huge = QStringLiteral("name \u05d0 ").repeated(150000);
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}, {20, 20}}, 1)));
    Expecting().Expect(QStringLiteral("frmMetadata"), [&](QWidget& window) {
        Control<QLineEdit>(window, "tbMetaName").setText(huge);
        Control<QLineEdit>(window, "tbDescription").setText(huge);
        Control<QTabWidget>(window, "SSTab1").setCurrentIndex(1);
        Expecting().Expect(QStringLiteral("InputBox"), [](QWidget& box) {
            Activate(box);
            TypeInto(box, "txtInput", QStringLiteral("huge"));
            QTest::keyClick(&box, Qt::Key_Return);
        });
        Click(window, "btnAdd");
        Control<QLineEdit>(window, "tbData").setText(huge);
        Click(window, "btnOK");
    });
    Choose("mnuMapMetaData");
    Choose("mFileSaveAtlavex");
    Start(QString::fromStdString(PathOf("a.Atlavex")));
    for (const char* const key : {"name", "description", "huge"})
        EXPECT_TRUE(State().currentMap->GetMetadata(key) == huge.toStdString()) << key;
    EXPECT_EQ(EntriesOf("ddMaps"), (QStringList{OneLine(huge), QStringLiteral("map2")}));
    Expecting().Expect(QStringLiteral("frmMetadata"), [&](QWidget& window) {
        EXPECT_TRUE(Control<QLineEdit>(window, "tbMetaName").text() == huge);
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    Choose("mBitmapRename");
    Expecting().Expect(QStringLiteral("MessageBox"), [](QWidget& window) {
        EXPECT_TRUE(dynamic_cast<QMessageBox&>(window).text().endsWith(QStringLiteral("' map?")));
        EXPECT_LT(window.height(), 1000) << "the buttons are on the screen";
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    Choose("mBitmapDelete");
}

TEST_F(BadTexts, LongerThanTheLibraryTakesAreRefusedAndNothingIsChanged) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}}, 1)));
    State().currentMap->SetMetadata("huge", std::string((16 << 20) - 100, 'm'));
    const auto before = MetadataOf(*State().currentMap);
    Expecting().Expect(QStringLiteral("frmMetadata"), [this](QWidget& window) {
        TypeInto(window, "tbMetaName", QStringLiteral("other"));
        TypeInto(window, "tbVersion", QString(200, u'v'));
        Expecting().ExpectBox(
            QStringLiteral("The metadata of one map or icon may hold 16 megabytes at most."));
        Click(window, "btnOK");
        EXPECT_TRUE(window.isVisible());
        Click(window, "btnCancel");
    });
    Choose("mnuMapMetaData");
    EXPECT_TRUE(MetadataOf(*State().currentMap) == before) << "a cancelled dialog has written nothing";
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(EntriesOf("ddMaps"), QStringList{"map1"});
}
