#include "tests/app/EditingFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

class PropertiesAndExport : public EditingTest {
protected:
    void EnterKey(const QString& key) {
        Expecting().Expect(QStringLiteral("frmAtlavexProperties"), [this, key](QWidget& window) {
            Click(window, "cbEncrypt");
            Control<QLineEdit>(window, "tbEncryptionKey").setText(key); // of any script
            if (key.size() > 4)
                Expecting().ExpectBox(KeyTooShort);
            Click(window, "btnOK");
        });
        Choose("mnuAtlavexProperties");
    }
};

} // namespace

TEST_F(PropertiesAndExport, AnotherKeyMarksTheLibraryTheSameDoesNot) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}})));
    EnterKey(QString());
    EXPECT_FALSE(State().modified);
    EnterKey(QStringLiteral("key 16 chars æøå"));
    EXPECT_EQ(State().encryptionKey, QStringLiteral("key 16 chars æøå"));
    EXPECT_TRUE(State().modified);
    EXPECT_FALSE(IsEnabled("mnuTileExport"));
    Choose("mFileSaveAtlavex");
    EXPECT_FALSE(State().modified);
    EnterKey(QStringLiteral("key 16 chars æøå"));
    EXPECT_FALSE(State().modified);
    EnterKey(QString());
    EXPECT_EQ(State().encryptionKey, QString()) << "an empty key takes the old one away";
    EXPECT_TRUE(State().modified);
}

TEST_F(PropertiesAndExport, ACancelledDialogLeavesTheKey) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}})));
    EnterKey(QStringLiteral("abc"));
    Choose("mFileSaveAtlavex");
    Expecting().Expect(QStringLiteral("frmAtlavexProperties"),
                       [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    Choose("mnuAtlavexProperties");
    EXPECT_EQ(State().encryptionKey, QStringLiteral("abc"));
    EXPECT_FALSE(State().modified);
}

TEST_F(PropertiesAndExport, AnExportNeedsASavedLibraryAndWritesTheMap) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{300, 200}})));
    const std::string folder = PathOf("tiles");
    std::filesystem::create_directory(folder);
    Expecting().Expect(QStringLiteral("frmExport"), [&](QWidget& window) {
        EXPECT_EQ(Control<QLineEdit>(window, "tbName").text(), QStringLiteral("map1"));
        TypeInto(window, "tbExportTo", QString::fromStdString(folder));
        Expecting().ExpectBox(ExportCompleted);
        Click(window, "btnExport");
    });
    Choose("mnuTileExport");
    EXPECT_TRUE(std::filesystem::exists(folder + "/00000000-0000-0000-0000-000000000001_map1/tiles.json"));
    EXPECT_FALSE(State().modified);
    EXPECT_FALSE(State().busy);
    EXPECT_TRUE(Window().isEnabled());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(PropertiesAndExport, AnExportIsRefusedWhileThereIsSomethingToSave) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}})));
    EnterKey(QStringLiteral("abc"));
    // The entry is disabled now: only who calls the handler itself sees the sentence.
    Expecting().ExpectBox(QStringLiteral("Current map must be saved before exporting tile images"));
    Find<QAction>("mnuTileExport").setEnabled(true);
    Find<QAction>("mnuTileExport").trigger();
}

TEST_F(PropertiesAndExport, WithoutAMapThereIsNothingToExport) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {}, 1)));
    EXPECT_TRUE(IsEnabled("mnuTileExport"));
    Choose("mnuTileExport");
}
