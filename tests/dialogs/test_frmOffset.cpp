#include "dialogs/frmOffset.h"

#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ModalScript.h"

namespace {

class Offset : public testing::Test {
protected:
    void Run(const std::function<void(QWidget&)>& act) {
        script_.Expect(QStringLiteral("frmOffset"), act);
        form_.exec();
    }

    /// Types both texts and presses OK.
    void Enter(const QString& x, const QString& y) {
        Run([x, y](QWidget& window) {
            TypeInto(window, "txtX", x);
            TypeInto(window, "txtY", y);
            Click(window, "bOK");
        });
    }

    /// Enters a text that is refused and then gives up.
    void ExpectRefused(const char* field, const QString& text) {
        script_.Expect(QStringLiteral("frmOffset"), [this, field, text](QWidget& window) {
            script_.ExpectBox(QStringLiteral("'%1' is not a number!").arg(text));
            TypeInto(window, field, text);
            Click(window, "bOK");
            EXPECT_TRUE(window.isVisible());
            EXPECT_EQ(window.focusWidget(), &Control<QLineEdit>(window, field));
            EXPECT_EQ(Control<QLineEdit>(window, field).selectedText().toStdString(), text.toStdString());
            QTest::keyClick(&window, Qt::Key_Escape);
        });
        form_.exec();
        EXPECT_FALSE(form_.OK());
    }

    ModalScript script_;
    frmOffset form_;
};

} // namespace

TEST_F(Offset, HasItsControls) {
    EXPECT_EQ(form_.windowTitle(), QStringLiteral("Offset"));
    EXPECT_EQ(Control<QGroupBox>(form_, "Frame1").title(), QStringLiteral("Offset from center of Icon"));
    EXPECT_EQ(Control<QLabel>(form_, "Label1").text(), QStringLiteral("X:"));
    EXPECT_EQ(Control<QLabel>(form_, "Label2").text(), QStringLiteral("Y:"));
    EXPECT_EQ(Control<QLineEdit>(form_, "txtX").text(), QStringLiteral("0"));
    EXPECT_EQ(Control<QLineEdit>(form_, "txtY").text(), QStringLiteral("0"));
    EXPECT_EQ(Control<QPushButton>(form_, "bOK").text(), QStringLiteral("OK"));
    EXPECT_EQ(Control<QPushButton>(form_, "bCancel").text(), QStringLiteral("Cancel"));
    EXPECT_TRUE(Control<QPlainTextEdit>(form_, "txtHelp").isReadOnly());
}

TEST_F(Offset, ShowsTheValuesAndWhatTheyMean) {
    form_.SetOffset(-12, 34);
    Run([](QWidget& window) {
        EXPECT_EQ(Control<QLineEdit>(window, "txtX").text(), QStringLiteral("-12"));
        EXPECT_EQ(Control<QLineEdit>(window, "txtY").text(), QStringLiteral("34"));
        EXPECT_EQ(
            Control<QPlainTextEdit>(window, "txtHelp").toPlainText().toStdString(),
            "Offset X is measured in pixels. If set to 0 then the Icon will be horizontally centered arount "
            "the position. If set to a positive value the Icon will be displaced the corresponding number of "
            "pixels to the right, and if negative to the left.\n\nOffsetY is measured in pixels. If set to 0 "
            "then the Icon will be vertically centered arount the position. If set to a positive value the "
            "Icon will be displaced the corresponding number of pixels downwards, and if negative upwards.");
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        EXPECT_EQ(TabOrder(window), (QStringList{"txtX", "txtY", "txtHelp", "bOK", "bCancel"}));
        Click(window, "bOK");
    });
    EXPECT_TRUE(form_.OK());
    EXPECT_EQ(form_.OffsetX(), -12);
    EXPECT_EQ(form_.OffsetY(), 34);
}

TEST_F(Offset, TakesWholeNumbersOf32Bits) {
    Enter(QStringLiteral("2147483647"), QStringLiteral("-2147483648"));
    EXPECT_TRUE(form_.OK());
    EXPECT_EQ(form_.OffsetX(), 2147483647);
    EXPECT_EQ(form_.OffsetY(), -2147483647 - 1);
}

TEST_F(Offset, RoundsHalvesToEvenAndTakesAnEmptyFieldAsNought) {
    Enter(QStringLiteral("2.5"), QStringLiteral("-3.5"));
    EXPECT_EQ(form_.OffsetX(), 2);
    EXPECT_EQ(form_.OffsetY(), -4);
    Enter(QString(), QStringLiteral(" 7 "));
    EXPECT_EQ(form_.OffsetX(), 0);
    EXPECT_EQ(form_.OffsetY(), 7);
}

TEST_F(Offset, StaysOpenWhenAFieldHoldsNoNumber) {
    form_.SetOffset(1, 2);
    ExpectRefused("txtX", QStringLiteral("abc"));
    ExpectRefused("txtY", QStringLiteral("12a"));
    ExpectRefused("txtX", QStringLiteral("2147483648"));
    ExpectRefused("txtY", QStringLiteral("-2147483649"));
    for (const char* const text :
         {"inf", "nan", "1e400", "99999999999999999999", "0x10", "--5", "5 5", "1,000", " "})
        ExpectRefused("txtX", QLatin1String(text));
    ExpectRefused("txtX", QStringLiteral("<b>1</b>"));
    EXPECT_EQ(form_.OffsetX(), 1);
    EXPECT_EQ(form_.OffsetY(), 2);
}

TEST_F(Offset, NamesTheFirstOfTwoWrongFieldsOnly) {
    script_.Expect(QStringLiteral("frmOffset"), [this](QWidget& window) {
        script_.ExpectBox(QStringLiteral("'p' is not a number!"));
        TypeInto(window, "txtX", QStringLiteral("p"));
        TypeInto(window, "txtY", QStringLiteral("q"));
        Click(window, "bOK");
        Click(window, "bCancel");
    });
    form_.exec();
}

TEST_F(Offset, EnterIsOKEscapeAndCancelAreNot) {
    Run([](QWidget& window) { QTest::keyClick(&Control<QLineEdit>(window, "txtY"), Qt::Key_Return); });
    EXPECT_TRUE(form_.OK());
    Run([](QWidget& window) {
        TypeInto(window, "txtX", QStringLiteral("99"));
        QTest::keyClick(&Control<QLineEdit>(window, "txtX"), Qt::Key_Escape);
    });
    EXPECT_FALSE(form_.OK());
    EXPECT_EQ(form_.OffsetX(), 0);
    Run([](QWidget& window) { Click(window, "bCancel"); });
    EXPECT_FALSE(form_.OK());
    Run([](QWidget& window) { window.close(); });
    EXPECT_FALSE(form_.OK());
    EXPECT_FALSE(form_.isVisible());
}
