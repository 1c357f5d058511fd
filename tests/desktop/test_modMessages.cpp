#include "platform/modMessages.h"

#include "tests/support/desktop/ModalScript.h"

TEST(Messages, AreShownAsPlainTextUnderTheProgramsName) {
    ModalScript script;
    script.ExpectBox(QStringLiteral("'<b>x</b>' is not a number!"));
    ShowMessage(nullptr, QStringLiteral("'<b>x</b>' is not a number!"));
    EXPECT_TRUE(script.IsDone());
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

TEST(InputBoxes, GiveWhatWasTypedAndNothingWhenCancelled) {
    ModalScript script;
    script.ExpectInput(QStringLiteral("Key:"), QStringLiteral(" a b "));
    EXPECT_EQ(AskText(nullptr, QStringLiteral("Key:")), QStringLiteral(" a b "));
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
