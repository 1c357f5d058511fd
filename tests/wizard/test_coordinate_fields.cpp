#include "tests/wizard/CoordinateFixture.h"

#include <QClipboard>

// What happens when a field is entered, typed into and left.

namespace {

using CoordinateFields = CoordinateFormTest;

/// Lets what a focus change put off be said.
void Wait() {
    QApplication::processEvents();
}

} // namespace

TEST_F(CoordinateFields, SaysOnceWhatIsNoNumberAndKeepsTheValue) {
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    TypeAndLeave(shown, "txtLatDecDeg", QStringLiteral("55"));
                    TypeAndLeave(shown, "txtLatDecDeg", QStringLiteral("12a"));
                    Wait();
                    EXPECT_EQ(Text(shown, "txtLatDecDeg"), "12a");
                    EXPECT_EQ(Text(shown, "txtLatDeg"), "55");
                    Click(shown, "bNext");
                })
        .ExpectBox(QStringLiteral("'12a' is not a number!"));
    EXPECT_TRUE(form.ShowModal());
    EXPECT_EQ(form.Latitude, 55);
}

TEST_F(CoordinateFields, StaysOpenWhenNextIsClickedStraightFromABadField) {
    form.Latitude = 55;
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    Type(shown, "txtLonDecDeg", QStringLiteral("<b>x</b>"));
                    Click(shown, "bNext");
                    Wait();
                    EXPECT_TRUE(shown.isVisible());
                    EXPECT_FALSE(Control<QAbstractButton>(shown, "bNext").isDown());
                    Click(shown, "bCancel");
                })
        .ExpectBox(QStringLiteral("'<b>x</b>' is not a number!"));
    EXPECT_FALSE(form.ShowModal());
}

TEST_F(CoordinateFields, StaysOpenWhenTheBoxComesWhileNextIsStillPressed) {
    form.Latitude = 55;
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    Type(shown, "txtLonDecDeg", QStringLiteral("x"));
                    auto& next = Control<QAbstractButton>(shown, "bNext");
                    QTest::mousePress(&next, Qt::LeftButton);
                    Wait(); // the box comes and goes
                    QTest::mouseRelease(&next, Qt::LeftButton);
                    Wait();
                    EXPECT_TRUE(shown.isVisible());
                    Click(shown, "bCancel");
                })
        .ExpectBox(QStringLiteral("'x' is not a number!"));
    EXPECT_FALSE(form.ShowModal());
}

TEST_F(CoordinateFields, StaysOpenWhenNextIsHeldDownOnAValueThatCannotBe) {
    form.Latitude = 55;
    EXPECT_FALSE(Show([](QWidget& shown) {
        Type(shown, "txtLonDecDeg", QStringLiteral("361"));
        auto& next = Control<QAbstractButton>(shown, "bNext");
        QTest::mousePress(&next, Qt::LeftButton);
        Wait();
        QTest::mouseRelease(&next, Qt::LeftButton);
        EXPECT_TRUE(shown.isVisible());
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "0");
        Click(shown, "bCancel");
    }));
}

TEST_F(CoordinateFields, ChecksTheFieldWhenEnterIsPressedInIt) {
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    Type(shown, "txtLonDecDeg", QStringLiteral("1x"));
                    QTest::keyClick(&Control<QLineEdit>(shown, "txtLonDecDeg"), Qt::Key_Return);
                    Wait();
                    EXPECT_TRUE(shown.isVisible());
                    Type(shown, "txtLonDecDeg", QStringLiteral("12"));
                    QTest::keyClick(&Control<QLineEdit>(shown, "txtLonDecDeg"), Qt::Key_Return);
                })
        .ExpectBox(QStringLiteral("'1x' is not a number!"));
    EXPECT_TRUE(form.ShowModal());
    EXPECT_EQ(form.Longitude, 12);
}

TEST_F(CoordinateFields, LeavesWithoutAWordByEscapeFromABadField) {
    EXPECT_FALSE(Show([](QWidget& shown) {
        Type(shown, "txtLonDecDeg", QStringLiteral("1x"));
        QTest::keyClick(&Control<QLineEdit>(shown, "txtLonDecDeg"), Qt::Key_Escape);
        Wait();
    }));
    EXPECT_TRUE(Show([](QWidget& shown) {
        Type(shown, "txtLonDecDeg", QStringLiteral("1"));
        Click(shown, "bNext");
    }));
}

TEST_F(CoordinateFields, ReadsAnEmptyFieldAsZero) {
    form.Latitude = 55;
    form.Longitude = 12;
    EXPECT_TRUE(Show([](QWidget& shown) {
        TypeAndLeave(shown, "txtLonDecDeg", QString());
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "0");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Longitude, 0);
}

TEST_F(CoordinateFields, PutsBackWhatNoPositionCanBe) {
    form.Latitude = 55;
    EXPECT_FALSE(Show([](QWidget& shown) {
        TypeAndLeave(shown, "txtLatDecDeg", QStringLiteral("91"));
        EXPECT_EQ(Text(shown, "txtLatDecDeg"), "55");
        Type(shown, "txtLonDecDeg", QStringLiteral("361"));
        Click(shown, "bNext");
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "0");
        TypeAndLeave(shown, "txtX", QStringLiteral("3e9"));
        EXPECT_EQ(Text(shown, "txtX"), "0");
        Click(shown, "bCancel");
    }));
}

TEST_F(CoordinateFields, RoundsTypedPixelsDown) {
    form.Latitude = 1;
    EXPECT_TRUE(Show([](QWidget& shown) {
        TypeAndLeave(shown, "txtX", QStringLiteral("12.9"));
        Type(shown, "txtY", QStringLiteral("-0.5"));
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.PixelX, 12);
    EXPECT_EQ(form.PixelY, -1);
}

TEST_F(CoordinateFields, IsLeftAloneWhileItsWindowOrAMenuHasTheFocus) {
    Show([](QWidget& shown) {
        Type(shown, "txtLonDecDeg", QStringLiteral("1x"));
        auto& field = Control<QLineEdit>(shown, "txtLonDecDeg");
        for (const Qt::FocusReason reason :
             {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason, Qt::MenuBarFocusReason}) {
            QFocusEvent out(QEvent::FocusOut, reason);
            QApplication::sendEvent(&field, &out);
            Wait(); // a box would be one that nobody expects
            QFocusEvent in(QEvent::FocusIn, reason);
            QApplication::sendEvent(&field, &in);
        }
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "1x");
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
}

TEST_F(CoordinateFields, SaysWhatIsWrongOfEachFieldThatIsLeft) {
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    TypeAndLeave(shown, "txtX", QStringLiteral("a"));
                    Wait();
                    TypeAndLeave(shown, "txtY", QStringLiteral("1,5"));
                    Wait();
                    Click(shown, "rbDMS");
                    TypeAndLeave(shown, "txtLatDeg", QStringLiteral("5 5"));
                    Wait();
                    TypeAndLeave(shown, "txtLonSec", QStringLiteral("inf"));
                    Wait();
                    Click(shown, "bCancel");
                })
        .ExpectBox(QStringLiteral("'a' is not a number!"))
        .ExpectBox(QStringLiteral("'1,5' is not a number!"))
        .ExpectBox(QStringLiteral("'5 5' is not a number!"))
        .ExpectBox(QStringLiteral("'inf' is not a number!"));
    EXPECT_FALSE(form.ShowModal());
}

TEST_F(CoordinateFields, HasTheFocusBackWithItsTextSelectedAfterARefusal) {
    form.Latitude = 55;
    const auto expectSelected = [](QWidget& shown, const char* name, const char* text) {
        Wait();
        auto& field = Control<QLineEdit>(shown, name);
        EXPECT_EQ(shown.focusWidget(), &field) << name;
        EXPECT_EQ(field.selectedText().toStdString(), text);
    };
    script
        .Expect(Name(),
                [&](QWidget& shown) {
                    TypeAndLeave(shown, "txtLonDecDeg", QStringLiteral("12a"));
                    expectSelected(shown, "txtLonDecDeg", "12a");
                    // Left as it is, it is not said again; typed again, it is.
                    Click(shown, "txtX");
                    Wait();
                    EXPECT_EQ(shown.focusWidget(), &Control<QLineEdit>(shown, "txtX"));
                    TypeAndLeave(shown, "txtLonDecDeg", QStringLiteral("12a"));
                    expectSelected(shown, "txtLonDecDeg", "12a");
                    TypeAndLeave(shown, "txtLatDecDeg", QStringLiteral("91"));
                    expectSelected(shown, "txtLatDecDeg", "55");
                    Type(shown, "txtY", QStringLiteral("x"));
                    QTest::keyClick(&Control<QLineEdit>(shown, "txtY"), Qt::Key_Return);
                    expectSelected(shown, "txtY", "x");
                    Type(shown, "txtY", QStringLiteral("y"));
                    Click(shown, "bNext");
                    expectSelected(shown, "txtY", "y");
                    Click(shown, "bCancel");
                })
        .ExpectBox(QStringLiteral("'12a' is not a number!"))
        .ExpectBox(QStringLiteral("'12a' is not a number!"))
        .ExpectBox(QStringLiteral("'x' is not a number!"))
        .ExpectBox(QStringLiteral("'y' is not a number!"));
    EXPECT_FALSE(form.ShowModal());
}

TEST_F(CoordinateFields, SelectsTheWholeTextOfAFieldThatIsEntered) {
    form.PixelX = 1234;
    Show([](QWidget& shown) {
        for (const char* const name : {"txtX", "txtLatDecDeg"}) {
            auto& field = Control<QLineEdit>(shown, name);
            Click(shown, name);
            EXPECT_EQ(field.selectedText(), field.text()) << name;
            QTest::keyClick(&field, Qt::Key_Tab);
        }
        auto* const entered = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        ASSERT_NE(entered, nullptr);
        EXPECT_EQ(entered->selectedText(), entered->text());
        Click(shown, "bCancel");
    });
}

TEST_F(CoordinateFields, TakesAWholeCoordinateThatIsPasted) {
    EXPECT_TRUE(Show([](QWidget& shown) {
        Paste(shown, "txtLonDecDeg", QStringLiteral("55°40'34\"N 12°34'08\"E"));
        EXPECT_EQ(Text(shown, "txtLatDecDeg"), "55.6761111");
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "12.5688889");
        Click(shown, "rbDMS");
        Paste(shown, "txtLatSec", QStringLiteral("-55.5, 12.25"));
        EXPECT_EQ(Text(shown, "txtLatMin"), "30");
        EXPECT_EQ(Text(shown, "txtLonMin"), "15");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Latitude, -55.5);
    EXPECT_EQ(form.Longitude, 12.25);
    UseGrid();
    EXPECT_TRUE(Show([](QWidget& shown) {
        Paste(shown, "txtNorthing", QStringLiteral("32633 6173000"));
        EXPECT_EQ(Text(shown, "txtEasting"), "32633");
        EXPECT_EQ(Text(shown, "txtNorthing"), "6173000");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Easting, 32633);
    EXPECT_EQ(form.Northing, 6173000);
}

TEST_F(CoordinateFields, PastesIntoUnlockedFieldsOnlyAndOtherTextsAsTheyAre) {
    form.LockX = true;
    form.Longitude = 9;
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    Paste(shown, "txtLatDecDeg", QStringLiteral("55.5 12.5"));
                    EXPECT_EQ(Text(shown, "txtLatDecDeg"), "55.5");
                    EXPECT_EQ(Text(shown, "txtLonDecDeg"), "9");
                    Paste(shown, "txtLatDecDeg", QStringLiteral("91 12.5"));
                    EXPECT_EQ(Text(shown, "txtLatDecDeg"), "91 12.5");
                    Click(shown, "bNext");
                    Wait();
                    // What is typed key by key is never taken for a pair.
                    Type(shown, "txtLatDecDeg", QStringLiteral("44 1"));
                    EXPECT_EQ(Text(shown, "txtLatDecDeg"), "44 1");
                    Paste(shown, "txtLatDecDeg", QStringLiteral("44.25"));
                    Click(shown, "bNext");
                })
        .ExpectBox(QStringLiteral("'91 12.5' is not a number!"));
    EXPECT_TRUE(form.ShowModal());
    EXPECT_EQ(form.Latitude, 44.25);
    EXPECT_EQ(form.Longitude, 9);
}

TEST_F(CoordinateFields, LeaveANumberThatWasPastedToTheNumberCheck) {
    UseGrid();
    form.Northing = 6173000;
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    for (const char* const text : {"617,300", "32633,5", "617 300"}) {
                        Paste(shown, "txtEasting", QString::fromLatin1(text));
                        EXPECT_EQ(Text(shown, "txtEasting"), text);
                        EXPECT_EQ(Text(shown, "txtNorthing"), "6173000");
                        Click(shown, "txtNorthing");
                        Wait();
                    }
                    Click(shown, "bCancel");
                })
        .ExpectBox(QStringLiteral("'617,300' is not a number!"))
        .ExpectBox(QStringLiteral("'32633,5' is not a number!"))
        .ExpectBox(QStringLiteral("'617 300' is not a number!"));
    EXPECT_FALSE(form.ShowModal());
    form.UseGrid = false;
    form.UseLonLat = true;
    form.Latitude = 55;
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    Paste(shown, "txtLonDecDeg", QStringLiteral("12,345"));
                    EXPECT_EQ(Text(shown, "txtLonDecDeg"), "12,345");
                    EXPECT_EQ(Text(shown, "txtLatDecDeg"), "55");
                    Click(shown, "txtLatDecDeg");
                    Wait();
                    Click(shown, "rbDMS");
                    for (const char* const text : {"55 40", "55.5 40.5"}) {
                        Paste(shown, "txtLatDeg", QString::fromLatin1(text));
                        EXPECT_EQ(Text(shown, "txtLatDeg"), text);
                        EXPECT_EQ(Text(shown, "txtLonDeg"), "0");
                        Click(shown, "txtLonMin");
                        Wait();
                    }
                    Click(shown, "bCancel");
                })
        .ExpectBox(QStringLiteral("'12,345' is not a number!"))
        .ExpectBox(QStringLiteral("'55 40' is not a number!"))
        .ExpectBox(QStringLiteral("'55.5 40.5' is not a number!"));
    EXPECT_FALSE(form.ShowModal());
}

namespace {

void TakeBack(QWidget& form, const char* field) {
    QTest::keyClick(&Control<QLineEdit>(form, field), Qt::Key_Z, Qt::ControlModifier);
}

} // namespace

TEST_F(CoordinateFields, TakeBackBothValuesOfAPasteAtOnce) {
    UseGrid();
    form.Easting = 1000.123;
    form.Northing = 2000.456;
    EXPECT_TRUE(Show([](QWidget& shown) {
        Paste(shown, "txtEasting", QStringLiteral("32633 6173000"));
        EXPECT_EQ(Text(shown, "txtEasting"), "32633");
        TakeBack(shown, "txtEasting");
        EXPECT_EQ(Text(shown, "txtEasting"), "1000.12");
        EXPECT_EQ(Text(shown, "txtNorthing"), "2000.46");
        EXPECT_EQ(Control<QLineEdit>(shown, "txtEasting").selectedText().toStdString(), "1000.12");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Easting, 1000.123); // with what the field does not show
    EXPECT_EQ(form.Northing, 2000.456);
    form.UseGrid = false;
    form.UseLonLat = true;
    form.Latitude = -33.123456789;
    EXPECT_TRUE(Show([](QWidget& shown) {
        Click(shown, "rbDMS");
        Paste(shown, "txtLonSec", QStringLiteral("55°40'34\"N 12°34'08\"E"));
        EXPECT_EQ(Text(shown, "txtLatDeg"), "55");
        TakeBack(shown, "txtLonSec");
        EXPECT_EQ(Text(shown, "txtLatDeg"), "33");
        EXPECT_EQ(Control<QComboBox>(shown, "ddLatHemi").currentText().toStdString(), "South");
        EXPECT_EQ(Text(shown, "txtLonSec"), "0");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Latitude, -33.123456789);
    EXPECT_EQ(form.Longitude, 0);
}

TEST_F(CoordinateFields, TakeBackAPasteAlsoFromTheOtherFieldAndToWhatWasBeingTyped) {
    UseGrid();
    form.Northing = 5;
    EXPECT_TRUE(Show([](QWidget& shown) {
        Type(shown, "txtEasting", QStringLiteral("77"));
        auto& easting = Control<QLineEdit>(shown, "txtEasting");
        easting.selectAll();
        QApplication::clipboard()->setText(QStringLiteral("32633 6173000"));
        QTest::keyClick(&easting, Qt::Key_V, Qt::ControlModifier);
        QTest::keyClick(&easting, Qt::Key_Tab);
        TakeBack(shown, "txtNorthing");
        EXPECT_EQ(Text(shown, "txtEasting"), "77");
        EXPECT_EQ(Text(shown, "txtNorthing"), "5");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Easting, 77);
    EXPECT_EQ(form.Northing, 5);
}

TEST_F(CoordinateFields, TakeBackOneEditAfterTheOther) {
    UseGrid();
    form.Easting = 1;
    EXPECT_TRUE(Show([](QWidget& shown) {
        Paste(shown, "txtEasting", QStringLiteral("32633 6173000"));
        Type(shown, "txtEasting", QStringLiteral("4"));
        TakeBack(shown, "txtEasting");
        EXPECT_EQ(Text(shown, "txtEasting"), "32633");
        EXPECT_EQ(Text(shown, "txtNorthing"), "6173000");
        TakeBack(shown, "txtEasting");
        EXPECT_EQ(Text(shown, "txtEasting"), "1");
        EXPECT_EQ(Text(shown, "txtNorthing"), "0");
        Paste(shown, "txtEasting", QStringLiteral("32633 6173000"));
        TypeAndLeave(shown, "txtNorthing", QStringLiteral("5"));
        TakeBack(shown, "txtEasting"); // what the paste wrote does not stand any more
        EXPECT_EQ(Text(shown, "txtEasting"), "32633");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Easting, 32633);
    EXPECT_EQ(form.Northing, 5);
    // Nor does it for the next point.
    form.Easting = 32633;
    form.Northing = 6173000;
    EXPECT_TRUE(Show([](QWidget& shown) {
        TakeBack(shown, "txtEasting");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Easting, 32633);
}

TEST_F(CoordinateFields, TakeNoPairFromAnUndoneDeletion) {
    form.Latitude = 7;
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    Type(shown, "txtLonDecDeg", QStringLiteral("44.5 1.5"));
                    auto& field = Control<QLineEdit>(shown, "txtLonDecDeg");
                    field.selectAll();
                    QTest::keyClick(&field, Qt::Key_Delete);
                    TakeBack(shown, "txtLonDecDeg");
                    EXPECT_EQ(field.text().toStdString(), "44.5 1.5");
                    EXPECT_EQ(Text(shown, "txtLatDecDeg"), "7");
                    Click(shown, "txtLatDecDeg");
                    Wait();
                    Click(shown, "bCancel");
                })
        .ExpectBox(QStringLiteral("'44.5 1.5' is not a number!"));
    EXPECT_FALSE(form.ShowModal());
}
