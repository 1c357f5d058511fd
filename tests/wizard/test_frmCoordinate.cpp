#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/wizard/CoordinateFixture.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>

namespace {

using CoordinateForm = CoordinateFormTest;

const auto Cancel = [](QWidget& shown) { Click(shown, "bCancel"); };

} // namespace

TEST_F(CoordinateForm, NumbersItsStepsAndPoints) {
    const std::vector<std::tuple<std::int16_t, std::int16_t, std::string>> cases{
        {1, 1, "Wizard step 4: Enter scaling coordinate 1 (of 3)"},
        {3, 1, "Wizard step 8: Enter scaling coordinate 3 (of 3)"},
        {4, 2, "Wizard step 10: Enter scaling coordinate 4 (of 4)"}};
    for (const auto& [number, projection, headline] : cases) {
        form.CoordinateNumber = number;
        form.ProjectionType = projection;
        Show([headline = headline](QWidget& shown) {
            EXPECT_EQ(Control<QLabel>(shown, "lHeadline").text().toStdString(), headline);
            EXPECT_EQ(shown.windowTitle().toStdString(), headline.substr(0, headline.rfind(" (") - 2));
            EXPECT_EQ(
                Control<QPlainTextEdit>(shown, "txtHelp").toPlainText().toStdString(),
                "In this step you must enter the geographic position which represtents the X, Y position on "
                "the raster map.\nIn total you need to specify 3 coordinates.\nThe coordinates should be as "
                "far apart as possible for the best results. Try to place them in opposite corners.");
            Click(shown, "bCancel");
        });
    }
}

TEST_F(CoordinateForm, HasEveryCaption) {
    Show([](QWidget& shown) {
        const std::vector<std::pair<const char*, const char*>> labels{
            {"Label1", "X:"},        {"Label2", "Y:"},        {"lbUnzoomed", "(in unzoomed pixels)"},
            {"Label7", "Latitude"},  {"Label8", "Longitude"}, {"lDegL", "Deg."},
            {"lMinL", "Minutes"},    {"lSecL", "Seconds"},    {"Label16", "Easting"},
            {"Label15", "Northing"}, {"lURL", "Help"}};
        for (const auto& [name, caption] : labels)
            EXPECT_EQ(Control<QLabel>(shown, name).text().toStdString(), caption);
        EXPECT_EQ(Control<QGroupBox>(shown, "Frame1").title().toStdString(), "I. Bitmap X, Y");
        EXPECT_EQ(Control<QGroupBox>(shown, "frameDatum").title().toStdString(), "II. Longitude / Latitude");
        EXPECT_EQ(Control<QGroupBox>(shown, "frameGrid").title().toStdString(), "II. Easting / Northing");
        EXPECT_EQ(Control<QRadioButton>(shown, "rbDecDeg").text().toStdString(), "Decimal degrees");
        EXPECT_EQ(Control<QRadioButton>(shown, "rbDMS").text().toStdString(), "DMS");
        EXPECT_EQ(Entries(shown, "ddLatHemi"), (std::vector<std::string>{"North", "South"}));
        EXPECT_EQ(Entries(shown, "ddLonHemi"), (std::vector<std::string>{"East", "West"}));
        Click(shown, "bCancel");
    });
}

TEST_F(CoordinateForm, ShowsOneEntryAndOneFormat) {
    Show([](QWidget& shown) {
        EXPECT_TRUE(IsShown(shown, "frameDatum"));
        EXPECT_FALSE(IsShown(shown, "frameGrid"));
        EXPECT_TRUE(IsShown(shown, "txtLatDecDeg"));
        EXPECT_FALSE(IsShown(shown, "txtLatSec"));
        EXPECT_FALSE(IsShown(shown, "ddLonHemi"));
        Click(shown, "rbDMS");
        EXPECT_FALSE(IsShown(shown, "txtLonDecDeg"));
        EXPECT_TRUE(IsShown(shown, "txtLonMin"));
        EXPECT_TRUE(IsShown(shown, "ddLatHemi"));
        Click(shown, "bCancel");
    });
    UseGrid();
    Show([](QWidget& shown) {
        EXPECT_FALSE(IsShown(shown, "frameDatum"));
        EXPECT_TRUE(IsShown(shown, "frameGrid"));
        EXPECT_EQ(Entries(shown, "ddUnit"),
                  (std::vector<std::string>{"meters", "yards", "U.S. feet", "Int. feet"}));
        EXPECT_EQ(Control<QComboBox>(shown, "ddUnit").currentText().toStdString(), "meters");
        Click(shown, "bCancel");
    });
}

TEST_F(CoordinateForm, ReadsDecimalDegrees) {
    form.PixelX = 12;
    form.PixelY = -3;
    EXPECT_TRUE(Show([](QWidget& shown) {
        EXPECT_EQ(Text(shown, "txtX"), "12");
        EXPECT_EQ(Text(shown, "txtY"), "-3");
        TypeAndLeave(shown, "txtLatDecDeg", QStringLiteral("-55.67612345678"));
        EXPECT_EQ(Text(shown, "txtLatDecDeg"), "-55.6761235");
        EXPECT_EQ(Text(shown, "txtLatDeg"), "55");
        EXPECT_EQ(Text(shown, "txtLatMin"), "40");
        EXPECT_EQ(Text(shown, "txtLatSec"), "34.044");
        EXPECT_EQ(Control<QComboBox>(shown, "ddLatHemi").currentIndex(), 1);
        Type(shown, "txtLonDecDeg", QStringLiteral("12.5"));
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Latitude, -55.67612345678);
    EXPECT_EQ(form.Longitude, 12.5);
    EXPECT_EQ(form.PixelX, 12);
}

TEST_F(CoordinateForm, ReadsDegreesMinutesSecondsAndHemisphere) {
    EXPECT_TRUE(Show([](QWidget& shown) {
        Click(shown, "rbDMS");
        TypeAndLeave(shown, "txtLatDeg", QStringLiteral("33"));
        TypeAndLeave(shown, "txtLatMin", QStringLiteral("30"));
        TypeAndLeave(shown, "txtLatSec", QStringLiteral("36.5"));
        Pick(shown, "ddLatHemi", QStringLiteral("South"));
        TypeAndLeave(shown, "txtLonDeg", QStringLiteral("70"));
        TypeAndLeave(shown, "txtLonMin", QStringLiteral("75"));
        EXPECT_EQ(Text(shown, "txtLonDeg"), "71");
        EXPECT_EQ(Text(shown, "txtLonMin"), "15");
        Pick(shown, "ddLonHemi", QStringLiteral("West"));
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "-71.25");
        Pick(shown, "ddLonHemi", QStringLiteral("East"));
        Pick(shown, "ddLonHemi", QStringLiteral("West"));
        Click(shown, "bNext");
    }));
    EXPECT_NEAR(form.Latitude, -(33 + 30 / 60.0 + 36.5 / 3600), 1e-12);
    EXPECT_NEAR(form.Longitude, -71.25, 1e-12);
    // The format is remembered for the next point.
    Show([](QWidget& shown) {
        EXPECT_TRUE(Control<QRadioButton>(shown, "rbDMS").isChecked());
        EXPECT_TRUE(IsShown(shown, "txtLatSec"));
        Click(shown, "bCancel");
    });
}

TEST_F(CoordinateForm, KeepsTheHemisphereThatIsChosenBeforeTheAngleIsTyped) {
    // Every point opens at 0/0: the first and the later ones.
    for (const std::int16_t number : std::initializer_list<std::int16_t>{1, 2, 3}) {
        form.CoordinateNumber = number;
        form.Latitude = 0;
        form.Longitude = 0;
        EXPECT_TRUE(Show([](QWidget& shown) {
            Click(shown, "rbDMS");
            Pick(shown, "ddLatHemi", QStringLiteral("South"));
            Pick(shown, "ddLonHemi", QStringLiteral("West"));
            EXPECT_EQ(Control<QComboBox>(shown, "ddLatHemi").currentText().toStdString(), "South");
            EXPECT_EQ(Control<QComboBox>(shown, "ddLonHemi").currentText().toStdString(), "West");
            TypeAndLeave(shown, "txtLatDeg", QStringLiteral("33"));
            TypeAndLeave(shown, "txtLatMin", QStringLiteral("30"));
            TypeAndLeave(shown, "txtLonMin", QStringLiteral("15"));
            Click(shown, "bNext");
        }));
        EXPECT_EQ(form.Latitude, -33.5);
        EXPECT_EQ(form.Longitude, -0.25);
    }
}

TEST_F(CoordinateForm, KeepsTheHemisphereOfAnAngleThatBecomesZeroOnTheWay) {
    form.Latitude = -10;
    form.Longitude = -20;
    EXPECT_TRUE(Show([](QWidget& shown) {
        Click(shown, "rbDMS");
        for (const char* const field : {"txtLatDeg", "txtLonDeg"})
            TypeAndLeave(shown, field, QStringLiteral("0"));
        // Through the other format and back.
        Click(shown, "rbDecDeg");
        EXPECT_EQ(Text(shown, "txtLatDecDeg"), "0");
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "0");
        Click(shown, "rbDMS");
        TypeAndLeave(shown, "txtLatSec", QStringLiteral("36"));
        Type(shown, "txtLonSec", QStringLiteral("72"));
        Click(shown, "bNext");
    }));
    EXPECT_DOUBLE_EQ(form.Latitude, -0.01);
    EXPECT_DOUBLE_EQ(form.Longitude, -0.02);
}

TEST_F(CoordinateForm, TakesTheSignOfATypedZeroForTheHemisphere) {
    EXPECT_TRUE(Show([](QWidget& shown) {
        Click(shown, "rbDMS");
        TypeAndLeave(shown, "txtLatDeg", QStringLiteral("-0"));
        EXPECT_EQ(Text(shown, "txtLatDeg"), "0");
        EXPECT_EQ(Control<QComboBox>(shown, "ddLatHemi").currentText().toStdString(), "South");
        Type(shown, "txtLatMin", QStringLiteral("30"));
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Latitude, -0.5);
    // The decimal box carries its own sign, whatever the hemisphere was.
    form.Latitude = 0;
    EXPECT_TRUE(Show([](QWidget& shown) {
        Pick(shown, "ddLatHemi", QStringLiteral("South"));
        Click(shown, "rbDecDeg");
        Type(shown, "txtLatDecDeg", QStringLiteral("12.5"));
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Latitude, 12.5);
}

TEST_F(CoordinateForm, KeepsTheExactPositionWhenTheFormatIsSwitchedAndFieldsAreLeft) {
    form.Latitude = 55.123456789012;
    form.Longitude = -12.987654321098;
    EXPECT_TRUE(Show([](QWidget& shown) {
        Click(shown, "rbDMS");
        for (const char* const field : {"txtLatDeg", "txtLatMin", "txtLatSec", "txtLonSec"}) {
            Click(shown, field);
            QTest::keyClick(&Control<QLineEdit>(shown, field), Qt::Key_Tab);
        }
        TypeAndLeave(shown, "txtLatMin", QStringLiteral("7.0"));
        EXPECT_EQ(Text(shown, "txtLatMin"), "7");
        Click(shown, "rbDecDeg");
        EXPECT_EQ(Text(shown, "txtLatDecDeg"), "55.1234568");
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "-12.9876543");
        Click(shown, "txtLatDecDeg");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Latitude, 55.123456789012);
    EXPECT_EQ(form.Longitude, -12.987654321098);
}

TEST_F(CoordinateForm, RefusesThePlaceWhereBothAreZero) {
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    Click(shown, "bNext");
                    EXPECT_TRUE(shown.isVisible());
                    Type(shown, "txtLonDecDeg", QStringLiteral("0.0000001"));
                    Click(shown, "bNext");
                })
        .ExpectBox(NoPosition);
    EXPECT_TRUE(form.ShowModal());
    UseGrid();
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    Click(shown, "bNext");
                    EXPECT_TRUE(shown.isVisible());
                    Type(shown, "txtNorthing", QStringLiteral("-1"));
                    Click(shown, "bNext");
                })
        .ExpectBox(NoPosition);
    EXPECT_TRUE(form.ShowModal());
    EXPECT_EQ(form.Easting, 0);
    EXPECT_EQ(form.Northing, -1);
}

TEST_F(CoordinateForm, ConvertsLengthsAndRemembersTheUnit) {
    UseGrid();
    EXPECT_TRUE(Show([](QWidget& shown) {
        Pick(shown, "ddUnit", QStringLiteral("U.S. feet"));
        TypeAndLeave(shown, "txtEasting", QStringLiteral("100"));
        EXPECT_EQ(Text(shown, "txtEasting"), "100");
        Type(shown, "txtNorthing", QStringLiteral("1000.5"));
        Click(shown, "bNext");
    }));
    EXPECT_NEAR(form.Easting, 30.480061, 1e-12);
    EXPECT_NEAR(form.Northing, 1000.5 * 0.30480061, 1e-9);
    Show([](QWidget& shown) {
        EXPECT_EQ(Control<QComboBox>(shown, "ddUnit").currentText().toStdString(), "U.S. feet");
        EXPECT_EQ(Text(shown, "txtNorthing"), "1000.5");
        Pick(shown, "ddUnit", QStringLiteral("yards"));
        Click(shown, "bCancel");
    });
    // A cancelled showing does not count.
    Show([](QWidget& shown) {
        EXPECT_EQ(Control<QComboBox>(shown, "ddUnit").currentText().toStdString(), "U.S. feet");
        Click(shown, "bCancel");
    });
}

TEST_F(CoordinateForm, KeepsTheMetersWhenUnitsAreSwitchedAndFieldsAreLeft) {
    UseGrid();
    form.Easting = 500000.123456;
    form.Northing = 6173000.5;
    EXPECT_TRUE(Show([](QWidget& shown) {
        EXPECT_EQ(Text(shown, "txtEasting"), "500000.12");
        for (const char* const unit : {"yards", "U.S. feet", "Int. feet", "meters"}) {
            Pick(shown, "ddUnit", QString::fromLatin1(unit));
            Click(shown, "txtEasting");
            Click(shown, "txtNorthing");
        }
        EXPECT_EQ(Text(shown, "txtEasting"), "500000.12");
        EXPECT_EQ(Text(shown, "txtNorthing"), "6173000.5");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Easting, 500000.123456);
}

TEST_F(CoordinateForm, LocksWhatIsGiven) {
    const std::vector<const char*> x{"txtEasting", "txtLonDecDeg", "txtLonDeg",
                                     "txtLonMin",  "txtLonSec",    "ddLonHemi"};
    const std::vector<const char*> y{"txtNorthing", "txtLatDecDeg", "txtLatDeg",
                                     "txtLatMin",   "txtLatSec",    "ddLatHemi"};
    form.Latitude = 55;
    for (const auto& [lockX, lockY] : {std::pair{true, true}, {true, false}, {false, true}, {false, false}}) {
        form.LockX = lockX;
        form.LockY = lockY;
        EXPECT_TRUE(Show([&, lockX = lockX, lockY = lockY](QWidget& shown) {
            for (const char* const name : x)
                EXPECT_EQ(Control<QWidget>(shown, name).isEnabled(), !lockX) << name;
            for (const char* const name : y)
                EXPECT_EQ(Control<QWidget>(shown, name).isEnabled(), !lockY) << name;
            Click(shown, "bNext");
        }));
    }
}

TEST_F(CoordinateForm, RefusesTheLastCornerAtZeroThoughNothingCanBeEdited) {
    form.LockX = true;
    form.LockY = true;
    script
        .Expect(Name(),
                [](QWidget& shown) {
                    Click(shown, "bNext");
                    EXPECT_TRUE(shown.isVisible());
                    Click(shown, "bCancel");
                })
        .ExpectBox(NoPosition);
    EXPECT_FALSE(form.ShowModal());
    form.Longitude = 1e-9; // shown as 0, but it is not
    EXPECT_TRUE(Show([](QWidget& shown) { Click(shown, "bNext"); }));
    EXPECT_EQ(form.Longitude, 1e-9);
}

TEST_F(CoordinateForm, TakesALengthInTheUnitInWhichItWasTyped) {
    UseGrid();
    EXPECT_TRUE(Show([](QWidget& shown) {
        Type(shown, "txtEasting", QStringLiteral("100"));
        Pick(shown, "ddUnit", QStringLiteral("U.S. feet"));
        EXPECT_EQ(Text(shown, "txtEasting"), "328.08");
        Pick(shown, "ddUnit", QStringLiteral("Int. feet"));
        Type(shown, "txtNorthing", QStringLiteral("1000"));
        Pick(shown, "ddUnit", QStringLiteral("yards"));
        EXPECT_EQ(Text(shown, "txtNorthing"), "333.33");
        Click(shown, "bNext");
    }));
    EXPECT_EQ(form.Easting, 100);
    EXPECT_DOUBLE_EQ(form.Northing, 304.8);
}

TEST_F(CoordinateForm, SwitchesFieldsBetweenEntriesWithoutCarryingOldTextsOver) {
    form.Latitude = 55;
    Show(Cancel);
    form.Latitude = 44;
    Show([](QWidget& shown) {
        EXPECT_EQ(Text(shown, "txtLatDecDeg"), "44");
        Click(shown, "bCancel");
    });
}
