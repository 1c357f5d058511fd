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

TEST(MessageBoxes, ShowEveryPartOfALongWord) {
    // Two names that differ at the end alone look different, and the box is no wider than others.
    const auto picture = [](const QString& name, const QString& text) {
        QImage seen;
        ModalScript script;
        script.Expect(QStringLiteral("MessageBox"), [&](QWidget& box) {
            EXPECT_EQ(dynamic_cast<QMessageBox&>(box).text().toStdString(), text.arg(name).toStdString());
            EXPECT_LT(box.width(), 800);
            seen = box.grab().toImage();
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        AskYesNo(nullptr, text.arg(name));
        return seen;
    };
    const auto question = QStringLiteral("Are you sure you want to delete '%1' map?");
    for (const int letters : {41, 100, 300, 700})
        for (const char32_t letter : {U'n', U'W', U'\U0001F5FA'}) {
            const QString start =
                QString::fromStdU32String(std::u32string(static_cast<std::size_t>(letters), letter));
            EXPECT_NE(picture(start + u'1', question), picture(start + u'2', question))
                << letters << " " << static_cast<unsigned>(letter);
        }
    const auto missing = QStringLiteral("There is no file '/%1/a.Atlavex'.");
    EXPECT_NE(picture(QString(200, u'x') + u'1', missing), picture(QString(200, u'x') + u'2', missing));
}

TEST(MessageBoxes, ThatAreOnlyOpenedDoNotHoldAnybodyUp) {
    ModalScript script;
    script.ExpectBox(QStringLiteral("Later"));
    OpenMessage(nullptr, QStringLiteral("Later"));
    EXPECT_FALSE(script.IsDone());
    EXPECT_TRUE(QTest::qWaitFor([&script] { return script.IsDone(); }, 60000));
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
