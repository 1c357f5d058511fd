#include "catalogue/modGadgets.h"

#include "base/ComponentError.h"
#include "catalogue/FillTables.h"

#include <gmock/gmock.h>

#include <cmath>

TEST(Units, StandInTheirOrder) {
    FillUnits();
    FillUnits();
    EXPECT_THAT(Units, testing::ElementsAre("meters", "yards", "U.S. feet", "Int. feet"));
}

TEST(UnitToMeters, MultipliesByTheExactConstants) {
    EXPECT_EQ(UnitToMeters(100, "U.S. feet"), 100 * 0.30480061);
    EXPECT_DOUBLE_EQ(UnitToMeters(100, "U.S. feet"), 30.480061);
    EXPECT_EQ(UnitToMeters(7, "meters"), 7);
    EXPECT_EQ(UnitToMeters(1, "yards"), 0.9144);
    EXPECT_EQ(UnitToMeters(1, "Int. feet"), 0.3048);
}

TEST(MetersToUnit, DividesByTheSameConstants) {
    EXPECT_EQ(MetersToUnit(0.9144, "yards"), 1);
    EXPECT_EQ(MetersToUnit(0.30480061, "U.S. feet"), 1);
    EXPECT_EQ(MetersToUnit(0.3048, "Int. feet"), 1);
    EXPECT_EQ(MetersToUnit(-12.25, "meters"), -12.25);
    // The exact survey foot would give 1 here.
    EXPECT_NE(MetersToUnit(1200.0 / 3937.0, "U.S. feet"), 1);
}

TEST(UnitConversion, GivesZeroForATextThatIsNoUnit) {
    for (const char* unit : {"feet", "Meters", "meters ", "", "U.S. Feet"}) {
        EXPECT_EQ(UnitToMeters(100, unit), 0) << unit;
        EXPECT_EQ(MetersToUnit(100, unit), 0) << unit;
    }
}

TEST(UnitConversion, FailsInsteadOfGivingAnInfiniteOrInvalidNumber) {
    EXPECT_THROW(MetersToUnit(1.7e308, "Int. feet"), ComponentError);
    EXPECT_THROW(UnitToMeters(std::nan(""), "yards"), ComponentError);
    EXPECT_THROW(UnitToMeters(HUGE_VAL, "meters"), ComponentError);
}
