#include "platform/modMessages.h"

#include "tests/support/desktop/ModalScript.h"

TEST(Messages, AreShownAsPlainTextUnderTheProgramsName) {
    ModalScript script;
    script.ExpectBox(QStringLiteral("'<b>x</b>' is not a number!"));
    ShowMessage(nullptr, QStringLiteral("'<b>x</b>' is not a number!"));
    EXPECT_TRUE(script.IsDone());
}

TEST(MessageBoxes, LeaveOutTheMiddleOfATextThatNoScreenHasRoomFor) {
    const auto shown = [](const QString& text) {
        QString found;
        ModalScript script;
        script.Expect(QStringLiteral("MessageBox"), [&found](QWidget& box) {
            found = dynamic_cast<QMessageBox&>(box).text();
            EXPECT_LT(box.height(), 1000);
            EXPECT_LT(box.width(), 1500);
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        AskYesNo(nullptr, text);
        return found;
    };
    const auto question = [](const QString& name) { return QStringLiteral("Delete '%1' map?").arg(name); };
    const QString longest = question(QString(1484, u'n'));
    EXPECT_EQ(shown(longest), longest);
    for (const QString& name :
         {QString(1 << 20, u'n'), QStringLiteral("n ").repeated(1 << 19),
          QStringLiteral("\U0001F5FA").repeated(1000), QStringLiteral("a\U0001F5FA").repeated(1000)}) {
        const QString text = shown(question(name));
        EXPECT_EQ(text.size() - text.count(u'\u2026'), 1500) << text.size();
        EXPECT_TRUE(text.startsWith(QStringLiteral("Delete '") + name.left(100))) << text.toStdString();
        EXPECT_TRUE(text.endsWith(name.right(100) + QStringLiteral("' map?"))) << text.toStdString();
        EXPECT_TRUE(text.isValidUtf16());
    }
    for (const char* const end : {"\n", "\r\n", "\u2028"})
        EXPECT_EQ(shown(question(QString::fromUtf8(end).repeated(100))),
                  QStringLiteral("Delete '%1\u2026%2' map?").arg(QString(23, u'\n'), QString(7, u'\n')));
}

TEST(Questions, AnswerNoOnEnterAndEscape) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        ModalScript script;
        script.Expect(QStringLiteral("MessageBox"), [key](QWidget& box) { QTest::keyClick(&box, key); });
        EXPECT_FALSE(AskYesNo(nullptr, QStringLiteral("Sure?")));
    }
}

TEST(Questions, AnswerYesWhenYesIsPressed) {
    ModalScript script;
    script.ExpectBox(QStringLiteral("Sure?"), QMessageBox::Yes);
    EXPECT_TRUE(AskYesNo(nullptr, QStringLiteral("Sure?")));
}

TEST(QuestionsWithCancel, AnswerYesOnEnterAndCancelOnEscape) {
    ModalScript script;
    script.Expect(QStringLiteral("MessageBox"), [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); });
    EXPECT_EQ(AskYesNoCancel(nullptr, QStringLiteral("Save?")), Answer::Yes);
    script.Expect(QStringLiteral("MessageBox"), [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_EQ(AskYesNoCancel(nullptr, QStringLiteral("Save?")), Answer::Cancel);
    script.ExpectBox(QStringLiteral("Save?"), QMessageBox::No);
    EXPECT_EQ(AskYesNoCancel(nullptr, QStringLiteral("Save?")), Answer::No);
}

TEST(Questions, AnswerNoOrCancelOnTheCloseButton) {
    ModalScript script;
    for (int time = 0; time < 3; ++time)
        script.Expect(QStringLiteral("MessageBox"), [](QWidget& box) { box.close(); });
    EXPECT_FALSE(AskYesNo(nullptr, QStringLiteral("Sure?")));
    EXPECT_EQ(AskYesNoCancel(nullptr, QStringLiteral("Save?")), Answer::Cancel);
    ShowMessage(nullptr, QStringLiteral("Done"));
    script.Expect(QStringLiteral("InputBox"), [](QWidget& box) { box.close(); });
    EXPECT_EQ(AskText(nullptr, QStringLiteral("Key:")), std::nullopt);
}

TEST(InputBoxes, GiveWhatWasTypedAndNothingWhenCancelled) {
    ModalScript script;
    script.ExpectInput(QStringLiteral("Key:"), QStringLiteral(" a b "));
    EXPECT_EQ(AskText(nullptr, QStringLiteral("Key:")), QStringLiteral(" a b "));
    const QString megabyte(1 << 20, u'm');
    script.Expect(QStringLiteral("InputBox"), [&megabyte](QWidget& box) {
        box.findChild<QLineEdit*>(QStringLiteral("txtInput"))->setText(megabyte);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    EXPECT_TRUE(AskText(nullptr, QStringLiteral("Key:")) == megabyte) << "whole";
    script.ExpectInput(QStringLiteral("Key:"), std::nullopt);
    EXPECT_EQ(AskText(nullptr, QStringLiteral("Key:")), std::nullopt);
}

TEST(MessageBoxes, ShowTheNormalPointerOverTheHourglass) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ModalScript script;
    script.Expect(QStringLiteral("MessageBox"), [](QWidget& box) {
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    ShowMessage(nullptr, QStringLiteral("Done"));
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QApplication::restoreOverrideCursor();
}
