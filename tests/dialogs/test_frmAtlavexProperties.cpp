#include "dialogs/frmAtlavexProperties.h"

#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"

namespace {

const auto TooLong = QStringLiteral("Error: Encryption key can not be longer than 16 characters");

class Properties : public testing::Test {
protected:
    void Run(const std::function<void(QWidget&)>& act) {
        script_.Expect(QStringLiteral("frmAtlavexProperties"), act);
        form_.exec();
    }

    /// Checks the box, types the key, presses OK.
    void Enter(const QString& key) {
        Run([key](QWidget& window) {
            Click(window, "cbEncrypt");
            TypeInto(window, "tbEncryptionKey", key);
            Click(window, "btnOK");
        });
    }

    ModalScript script_;
    QWidget main_;
    frmAtlavexProperties form_{&main_};
};

bool IsKeyOfLettersAndDigits(const QString& key) {
    return QRegularExpression(QStringLiteral("^[A-Za-z0-9]{16}$")).match(key).hasMatch();
}

} // namespace

TEST_F(Properties, HasItsControls) {
    EXPECT_EQ(form_.windowTitle(), QStringLiteral("Atlavex Properties"));
    EXPECT_EQ(Control<QCheckBox>(form_, "cbEncrypt").text(), QStringLiteral("Encrypt file"));
    EXPECT_EQ(Control<QLabel>(form_, "lbEncryptionKey").text(), QStringLiteral("Encryption key:"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnKeyGenerate").text(), QStringLiteral("Generate"));
    EXPECT_EQ(Control<QLabel>(form_, "Label1").text(),
              QStringLiteral("The key can at most be 16 characters long"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnOK").text(), QStringLiteral("OK"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnCancel").text(), QStringLiteral("Cancel"));
}

TEST_F(Properties, OpensUncheckedWithNoKeyEachTime) {
    Enter(QStringLiteral("abc"));
    Run([](QWidget& window) {
        EXPECT_FALSE(Control<QCheckBox>(window, "cbEncrypt").isChecked());
        EXPECT_EQ(Control<QLineEdit>(window, "tbEncryptionKey").text(), QString());
        EXPECT_FALSE(Control<QLineEdit>(window, "tbEncryptionKey").isEnabled());
        EXPECT_FALSE(Control<QPushButton>(window, "btnKeyGenerate").isEnabled());
        Click(window, "btnCancel");
    });
    EXPECT_FALSE(form_.OK());
}

TEST_F(Properties, TheBoxEnablesFieldAndButtonAndTakesNothingBack) {
    Run([this](QWidget& window) {
        Click(window, "cbEncrypt");
        EXPECT_TRUE(Control<QLineEdit>(window, "tbEncryptionKey").isEnabled());
        EXPECT_TRUE(Control<QPushButton>(window, "btnKeyGenerate").isEnabled());
        TypeInto(window, "tbEncryptionKey", QStringLiteral("key"));
        Click(window, "cbEncrypt");
        EXPECT_FALSE(Control<QLineEdit>(window, "tbEncryptionKey").isEnabled());
        EXPECT_FALSE(Control<QPushButton>(window, "btnKeyGenerate").isEnabled());
        Click(window, "btnOK");
    });
    EXPECT_TRUE(form_.OK());
    EXPECT_EQ(form_.EncryptionKey(), QStringLiteral("key"));
}

TEST_F(Properties, GreyedTheBoxEnablesTheButtonOnly) {
    Run([](QWidget& window) {
        auto& box = Control<QCheckBox>(window, "cbEncrypt");
        box.setTristate(true);
        Click(window, "cbEncrypt");
        EXPECT_EQ(box.checkState(), Qt::PartiallyChecked);
        EXPECT_FALSE(Control<QLineEdit>(window, "tbEncryptionKey").isEnabled());
        EXPECT_TRUE(Control<QPushButton>(window, "btnKeyGenerate").isEnabled());
        Click(window, "btnCancel");
    });
}

TEST_F(Properties, GeneratesAnotherKeyOfSixteenLettersAndDigitsEachTime) {
    Run([this](QWidget& window) {
        Click(window, "cbEncrypt");
        Click(window, "btnKeyGenerate");
        const QString first = form_.EncryptionKey();
        Click(window, "btnKeyGenerate");
        EXPECT_TRUE(IsKeyOfLettersAndDigits(first)) << first.toStdString();
        EXPECT_TRUE(IsKeyOfLettersAndDigits(form_.EncryptionKey()));
        EXPECT_NE(form_.EncryptionKey(), first);
        script_.ExpectBox(KeyTooShort);
        Click(window, "btnOK");
    });
    EXPECT_TRUE(form_.OK());
}

TEST_F(Properties, AcceptsAnEmptyOrShortKeySilently) {
    for (const char* const key : {"", "a", "abcd"}) {
        Enter(QString::fromLatin1(key));
        EXPECT_TRUE(form_.OK()) << key;
        EXPECT_FALSE(form_.isVisible());
        EXPECT_EQ(form_.EncryptionKey(), QString::fromLatin1(key));
    }
}

TEST_F(Properties, AcceptsALongerKeyAndThenSaysTheOpposite) {
    for (const char* const key : {"abcde", "0123456789abcdef"}) {
        script_.Expect(QStringLiteral("frmAtlavexProperties"), [this, key](QWidget& window) {
            script_.Expect(QStringLiteral("MessageBox"), [this](QWidget& box) {
                EXPECT_EQ(dynamic_cast<QMessageBox&>(box).text(), KeyTooShort);
                EXPECT_FALSE(form_.isVisible()) << "the dialog is hidden already";
                EXPECT_EQ(box.parentWidget(), &main_);
                QTest::keyClick(&box, Qt::Key_Return);
            });
            Click(window, "cbEncrypt");
            TypeInto(window, "tbEncryptionKey", QString::fromLatin1(key));
            QTest::keyClick(&Control<QLineEdit>(window, "tbEncryptionKey"), Qt::Key_Return);
        });
        form_.exec();
        EXPECT_TRUE(form_.OK());
        EXPECT_EQ(form_.EncryptionKey(), QString::fromLatin1(key));
        EXPECT_TRUE(script_.IsDone());
    }
}

TEST_F(Properties, RefusesAKeyOfSeventeenCharactersTwiceAndStays) {
    Run([this](QWidget& window) {
        script_.ExpectBox(TooLong).ExpectBox(KeyTooShort);
        Click(window, "cbEncrypt");
        TypeInto(window, "tbEncryptionKey", QStringLiteral("0123456789abcdefg"));
        Click(window, "btnOK");
        EXPECT_TRUE(window.isVisible());
        EXPECT_FALSE(form_.OK());
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    EXPECT_FALSE(form_.OK());
}

TEST_F(Properties, CountsCharactersOfEveryScriptOnce) {
    QString maps;
    for (int i = 0; i < 4; ++i)
        maps += QStringLiteral("\U0001F5FA");
    Run([maps](QWidget& window) {
        Click(window, "cbEncrypt");
        Control<QLineEdit>(window, "tbEncryptionKey").setText(maps);
        Click(window, "btnOK");
    });
    EXPECT_TRUE(form_.OK());
    EXPECT_EQ(form_.EncryptionKey(), maps);
}

TEST_F(Properties, ReplacesTheMarksOfAMask) {
    const QString text = form_.RandomString(QStringLiteral("ID-####"));
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^ID-[0-9]{4}$")).match(text).hasMatch());
}

TEST_F(Properties, IsReachedByKeysInOrder) {
    Run([](QWidget& window) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        QTest::keyClick(window.focusWidget(), Qt::Key_Space);
        EXPECT_EQ(TabOrder(window),
                  (QStringList{"cbEncrypt", "tbEncryptionKey", "btnKeyGenerate", "btnOK", "btnCancel"}));
        QTest::keyClick(&window, Qt::Key_Escape);
    });
}
