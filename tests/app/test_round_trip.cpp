// What is typed comes back after saving and opening again, through the same dialogs.

#include "tests/app/EditingFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

/// Texts of many scripts and of what is easily mangled; each fits a key.
const std::vector<QString> Texts{
    QStringLiteral("Ålesund Łódź ß"),                                        // Latin
    QStringLiteral("Ελλάδα ΐ"),                                              // Greek
    QStringLiteral("Москва Ѫ"),                                              // Cyrillic
    QStringLiteral("القاهرة لا"),                                            // Arabic
    QStringLiteral("יְרוּשָׁלַיִם"),                                               // Hebrew with points
    QStringLiteral("क्षत्रिय दिल्ली"),                                          // Devanagari
    QStringLiteral("กรุงเทพ น้ำ"),                                             // Thai
    QStringLiteral("東京 서울 北京 かな"),                                   // Han, Hangul, Kana
    QStringLiteral("\U0001F468\u200D\U0001F33E \U0001F1F8\U0001F1EA\uFE0F"), // joined emoji and a flag
    QStringLiteral("e\u0301 a\u030A\u0323 \u1100\u1161"), // marks and jamo that have a composed form, too
    QStringLiteral("\U0001D518 \U00010900 \U0002070E"),   // beyond the 16-bit plane
    QStringLiteral("\u202Ea\u2066b \u200B\u00AD"), // direction marks, a blank of no width, a soft hyphen
    QStringLiteral("\"'<b>&amp;\\ %1"),            // what other formats take for their own
    QStringLiteral(" outer blanks ")};

const QString& Text(std::size_t position) {
    return Texts[position % Texts.size()];
}

/// In the order of the dialog; "lastchanged" is stamped by the save.
constexpr std::array FixedFields{"tbMetaName", "tbAuthor", "tbVersion", "tbCreated", "tbDescription"};

class RoundTrip : public EditingTest {
protected:
    /// Types into the input box that comes next.
    void ExpectTyping(const QString& prompt, const QString& text) {
        Expecting().Expect(QStringLiteral("InputBox"), [prompt, text](QWidget& box) {
            Activate(box);
            EXPECT_EQ(Control<QLabel>(box, "").text(), prompt);
            Control<QLineEdit>(box, "txtInput").setText(text); // of any script
            QTest::keyClick(&Control<QLineEdit>(box, "txtInput"), Qt::Key_Return);
        });
    }

    void AddEntry(QWidget& window, const QString& key, const QString& value) {
        ExpectTyping(NewMetadataName, key);
        Click(window, "btnAdd");
        Control<QLineEdit>(window, "tbData").setText(value);
    }

    /// The fields from the text at `first` on, and three entries of the list.
    void FillMetadata(const char* menuEntry, std::size_t first) {
        Expecting().Expect(QStringLiteral("frmMetadata"), [this, first](QWidget& window) {
            for (std::size_t i = 0; i < FixedFields.size(); ++i)
                Control<QLineEdit>(window, FixedFields[i]).setText(Text(first + i));
            Control<QTabWidget>(window, "SSTab1").setCurrentIndex(1);
            for (std::size_t i = 0; i < 3; ++i)
                AddEntry(window, Text(first + i), Text(first + i + 1));
            Click(window, "btnOK");
        });
        Choose(menuEntry);
    }

    void ExpectMetadata(const char* menuEntry, std::size_t first) {
        Expecting().Expect(QStringLiteral("frmMetadata"), [first](QWidget& window) {
            for (std::size_t i = 0; i < FixedFields.size(); ++i)
                EXPECT_EQ(Control<QLineEdit>(window, FixedFields[i]).text(), Text(first + i));
            const auto& list = Control<QTreeWidget>(window, "lvCustomMeta");
            ASSERT_EQ(list.topLevelItemCount(), 3);
            for (int i = 0; i < 3; ++i) {
                const auto entry = first + static_cast<std::size_t>(i);
                EXPECT_EQ(list.topLevelItem(i)->text(0), Text(entry));
                EXPECT_EQ(list.topLevelItem(i)->text(1), Text(entry + 1));
            }
            QTest::keyClick(&window, Qt::Key_Escape);
        });
        Choose(menuEntry);
    }

    void EnterKey(const QString& key) {
        Expecting().Expect(QStringLiteral("frmAtlavexProperties"), [this, key](QWidget& window) {
            Click(window, "cbEncrypt");
            Control<QLineEdit>(window, "tbEncryptionKey").setText(key);
            Expecting().ExpectBox(KeyTooShort);
            Click(window, "btnOK");
        });
        Choose("mnuAtlavexProperties");
    }

    void Offset(const std::function<void(QWidget&)>& act) {
        Expecting().Expect(QStringLiteral("frmOffset"), act);
        Choose("mIconsOffset");
    }

    /// The entries of the list in the map's metadata; `act` has to end the dialog.
    void InCustomMetadata(const std::function<void(QWidget&, QTreeWidget&)>& act) {
        Expecting().Expect(QStringLiteral("frmMetadata"), [act](QWidget& window) {
            Control<QTabWidget>(window, "SSTab1").setCurrentIndex(1);
            act(window, Control<QTreeWidget>(window, "lvCustomMeta"));
        });
        Choose("mnuMapMetaData");
    }

    static void ClickEntry(QTreeWidget& list, int position) {
        list.scrollToItem(list.topLevelItem(position));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                          list.visualItemRect(list.topLevelItem(position)).center());
    }
};

} // namespace

TEST_F(RoundTrip, BringsTextsOfEveryScriptOffsetsAndTheKeyBack) {
    const std::string file = PathOf("a.Atlavex");
    for (std::size_t first = 0; first < Texts.size(); ++first) {
        SCOPED_TRACE(Text(first).toStdString());
        Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}}, 1)));
        FillMetadata("mnuMapMetaData", first);
        FillMetadata("mnuIconMetaData", first + 6);
        Offset([](QWidget& window) {
            TypeInto(window, "txtX", QStringLiteral("-2147483648"));
            TypeInto(window, "txtY", QStringLiteral("2147483647"));
            Click(window, "bOK");
        });
        EnterKey(Text(first));
        Choose("mFileSaveAtlavex");
        EXPECT_FALSE(State().modified);

        ExpectTyping(KeyPrompt, Text(first));
        Start(QString::fromStdString(file));
        ASSERT_NE(State().currentMap, nullptr) << "the key does not open it";
        EXPECT_EQ(EntriesOf("ddMaps"), QStringList{Text(first)});
        EXPECT_EQ(EntriesOf("ddIcons"), QStringList{Text(first + 6)});
        ExpectMetadata("mnuMapMetaData", first);
        ExpectMetadata("mnuIconMetaData", first + 6);
        Offset([](QWidget& window) {
            EXPECT_EQ(Control<QLineEdit>(window, "txtX").text(), QStringLiteral("-2147483648"));
            EXPECT_EQ(Control<QLineEdit>(window, "txtY").text(), QStringLiteral("2147483647"));
            QTest::keyClick(&window, Qt::Key_Escape);
        });
        std::filesystem::remove(file);
    }
}

TEST_F(RoundTrip, BringsAThousandEntriesBackInTheirOrder) {
    constexpr int Entries = 1000;
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 0);
    const auto key = [](int i) {
        return QStringLiteral("%1 %2").arg(i).arg(Text(static_cast<std::size_t>(i)));
    };
    const auto expectEntries = [&](const QTreeWidget& list) {
        ASSERT_EQ(list.topLevelItemCount(), Entries - 1);
        for (int i = 1; i < Entries; ++i) { // the first one was removed
            EXPECT_EQ(list.topLevelItem(i - 1)->text(0), key(i));
            EXPECT_EQ(list.topLevelItem(i - 1)->text(1),
                      i == 500 ? QStringLiteral("changed") : Text(2 * static_cast<std::size_t>(i)));
        }
    };
    Start(QString::fromStdString(file));
    InCustomMetadata([&](QWidget& window, QTreeWidget&) {
        for (int i = 0; i < Entries; ++i)
            AddEntry(window, key(i), Text(2 * static_cast<std::size_t>(i)));
        Click(window, "btnOK");
    });
    Choose("mFileSaveAtlavex");
    Start(QString::fromStdString(file));
    InCustomMetadata([&](QWidget& window, QTreeWidget& list) {
        ClickEntry(list, 500);
        TypeInto(window, "tbData", QStringLiteral("changed"));
        ClickEntry(list, 0);
        Click(window, "btnRemove");
        expectEntries(list);
        Click(window, "btnOK");
    });
    Choose("mFileSaveAtlavex");
    Start(QString::fromStdString(file));
    InCustomMetadata([&](QWidget& window, QTreeWidget& list) {
        expectEntries(list);
        Click(window, "btnCancel");
    });
}
