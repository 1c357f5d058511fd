#include "tests/app/EditingFixture.h"

namespace {

const auto KeyPrompt = QStringLiteral("Atlavex is encrypted. Please enter the encryption key:");
const auto TooShort = QStringLiteral("Error: Encryption key must be longer than 4 characters");

class PropertiesAndExport : public EditingTest {
protected:
    void EnterKey(const QString& key) {
        Expecting().Expect(QStringLiteral("frmAtlavexProperties"), [this, key](QWidget& window) {
            Click(window, "cbEncrypt");
            Control<QLineEdit>(window, "tbEncryptionKey").setText(key); // of any script
            if (key.size() > 4)
                Expecting().ExpectBox(TooShort);
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
        Expecting().ExpectBox(QStringLiteral("Tile Image Export completed!"));
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

TEST_F(PropertiesAndExport, WhatWasTypedComesBackAfterSavingAndOpening) {
    const std::vector<QString> texts{QStringLiteral("Ålesund"),
                                     QStringLiteral("Ελλάδα"),
                                     QStringLiteral("Москва"),
                                     QStringLiteral("القاهرة"),
                                     QStringLiteral("ירושלים"),
                                     QStringLiteral("दिल्ली"),
                                     QStringLiteral("กรุงเทพ"),
                                     QStringLiteral("東京 서울 北京"),
                                     QStringLiteral("\U0001F5FA\u200D\uFE0F"),
                                     QStringLiteral("\"'<b>&amp;\\ %1")};
    const std::vector<const char*> fields{"tbMetaName", "tbAuthor",      "tbVersion",
                                          "tbCreated",  "tbLastChanged", "tbDescription"};
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
    Start(QString::fromStdString(file));
    Expecting().Expect(QStringLiteral("frmMetadata"), [&](QWidget& window) {
        for (std::size_t i = 0; i < fields.size(); ++i)
            Control<QLineEdit>(window, fields[i]).setText(texts[i]);
        Control<QTabWidget>(window, "SSTab1").setCurrentIndex(1);
        for (const QString& text : texts) {
            Expecting().Expect(QStringLiteral("InputBox"), [text](QWidget& box) {
                Activate(box);
                Control<QLineEdit>(box, "txtInput").setText(text);
                QTest::keyClick(&Control<QLineEdit>(box, "txtInput"), Qt::Key_Return);
            });
            Click(window, "btnAdd");
            Control<QLineEdit>(window, "tbData").setText(text + text);
        }
        Click(window, "btnOK");
    });
    Choose("mnuMapMetaData");
    Expecting().Expect(QStringLiteral("frmOffset"), [](QWidget& window) {
        TypeInto(window, "txtX", QStringLiteral("-2147483648"));
        TypeInto(window, "txtY", QStringLiteral("2147483647"));
        Click(window, "bOK");
    });
    Choose("mIconsOffset");
    EnterKey(QStringLiteral("ключ 鍵"));
    Choose("mFileSaveAtlavex");

    Expecting().Expect(QStringLiteral("InputBox"), [](QWidget& box) {
        Activate(box);
        EXPECT_EQ(Control<QLabel>(box, "").text(), KeyPrompt);
        Control<QLineEdit>(box, "txtInput").setText(QStringLiteral("ключ 鍵"));
        QTest::keyClick(&Control<QLineEdit>(box, "txtInput"), Qt::Key_Return);
    });
    Start(QString::fromStdString(file));
    ASSERT_NE(State().currentMap, nullptr);
    EXPECT_EQ(EntriesOf("ddMaps"), QStringList{texts[0]});
    Expecting().Expect(QStringLiteral("frmMetadata"), [&](QWidget& window) {
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (fields[i] != std::string("tbLastChanged")) { // which the save has stamped
                EXPECT_EQ(Control<QLineEdit>(window, fields[i]).text(), texts[i]);
            }
        const auto& list = Control<QTreeWidget>(window, "lvCustomMeta");
        ASSERT_EQ(list.topLevelItemCount(), static_cast<int>(texts.size()));
        for (std::size_t i = 0; i < texts.size(); ++i) {
            EXPECT_EQ(list.topLevelItem(static_cast<int>(i))->text(0), texts[i]);
            EXPECT_EQ(list.topLevelItem(static_cast<int>(i))->text(1), texts[i] + texts[i]);
        }
        Click(window, "btnCancel");
    });
    Choose("mnuMapMetaData");
    EXPECT_EQ(State().currentIcon->OffsetX(), -2147483647 - 1);
    EXPECT_EQ(State().currentIcon->OffsetY(), 2147483647);
}
