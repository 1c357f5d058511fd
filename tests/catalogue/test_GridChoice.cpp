#include "catalogue/GridChoice.h"

#include "base/ComponentError.h"
#include "catalogue/modCountryGadgets.h"

#include <gmock/gmock.h>

namespace {

struct Choice {
    int identifier;
    int zone;
    bool operator==(const Choice&) const = default;
};

Choice Chosen(const std::string& grid, const std::string& zone) {
    const GridChoice choice = ChooseGrid(grid, zone);
    EXPECT_EQ(choice.grid, MakeGrid(choice.identifier, choice.zone));
    return {choice.identifier, choice.zone};
}

ComponentError ErrorOf(const std::string& grid, const std::string& zone) {
    try {
        ChooseGrid(grid, zone);
    } catch (const ComponentError& error) {
        return error;
    }
    return {ErrorNumber::Failed, "no error"};
}

} // namespace

TEST(ChooseGrid, TakesATypedZone) {
    EXPECT_EQ(Chosen("UTM North (wgs84)", "32"), (Choice{1, 32}));
    EXPECT_EQ(Chosen("UTM North (wgs84)", "01"), (Choice{1, 1}));
    EXPECT_EQ(Chosen("German Grid (Potsdam)", "3"), (Choice{29, 3}));
}

TEST(ChooseGrid, TakesAStatePlaneZoneByCodeNameOrBoth) {
    EXPECT_EQ(Chosen("State Plane (nad27)", "4204"), (Choice{30, 4204}));
    EXPECT_EQ(Chosen("State Plane (nad27)", "0101"), (Choice{30, 101}));
    EXPECT_EQ(Chosen("State Plane (nad83)", "101"), (Choice{31, 101}));
    EXPECT_EQ(Chosen("State Plane (nad83)", "Alaska Zone 10"), (Choice{31, 5010}));
    EXPECT_EQ(Chosen("State Plane (nad83)", "5010 Alaska Zone 10"), (Choice{31, 5010}));
}

TEST(ChooseGrid, TakesAListZoneByTextOrPlace) {
    EXPECT_EQ(Chosen("Bundesmeldenetz", "M31"), (Choice{18, 2}));
    EXPECT_EQ(Chosen("French Grid (ntf)", "Zone 2"), (Choice{24, 2}));
    EXPECT_EQ(Chosen("Finnish Grid", "Zone 3 (Whole country)"), (Choice{11, 3}));
    EXPECT_EQ(Chosen("Finnish Grid", "3"), (Choice{11, 3}));
    EXPECT_EQ(Chosen("Norwegian Grid (ngo48)", "8"), (Choice{44, 8}));
}

TEST(ChooseGrid, TakesNoZoneForASingleGrid) {
    EXPECT_EQ(Chosen("British National Grid", ""), (Choice{3, 0}));
    EXPECT_EQ(Chosen("System 34 (Main land)", ""), (Choice{48, 0}));
}

TEST(ChooseGrid, TakesEveryZoneOfEveryList) {
    for (const char* grid :
         {"State Plane (nad27)", "State Plane (nad83)", "Norwegian Grid (ngo48)", "Finnish Grid",
          "Gauss Boaga (roma40)", "French Grid (ntf)", "Bundesmeldenetz"}) {
        int place = 0;
        for (const std::string& zone : ZonesOf(grid)) {
            ++place;
            const bool statePlane = std::string_view(grid).starts_with("State");
            const int expected = statePlane ? std::stoi(zone.substr(0, 4)) : place;
            EXPECT_EQ(ChooseGrid(grid, zone).zone, expected) << grid << zone;
            if (statePlane) {
                EXPECT_EQ(ChooseGrid(grid, zone.substr(0, 4)).zone, expected);
                EXPECT_EQ(ChooseGrid(grid, zone.substr(5)).zone, expected);
            }
        }
    }
}

TEST(ChooseGrid, NamesAnUnknownGridAndTheWayToTheList) {
    const ComponentError error = ErrorOf("UTM North", "32");
    EXPECT_EQ(error.Number(), ErrorNumber::UnknownGrid);
    EXPECT_THAT(error.what(), testing::HasSubstr("\"UTM North\""));
    EXPECT_THAT(error.what(), testing::HasSubstr("atlavex catalogue"));
}

TEST(ChooseGrid, RefusesZonesThatTheGridDoesNotHave) {
    for (const char* zone : {"0", "61", "32N", "32.5", "-1", " 32", "99999999999999999999", "Zone 1"})
        EXPECT_EQ(ErrorOf("UTM (ed50)", zone).Number(), ErrorNumber::UnknownZone) << zone;
    for (const char* zone : {"5001", "alabama east", "0", "1", "Alabama", "00101x"})
        EXPECT_EQ(ErrorOf("State Plane (nad27)", zone).Number(), ErrorNumber::UnknownZone) << zone;
    for (const char* zone : {"0", "5", "zone 1", "Zone 3", "M31"})
        EXPECT_EQ(ErrorOf("Finnish Grid", zone).Number(), ErrorNumber::UnknownZone) << zone;
    EXPECT_EQ(ErrorOf("British National Grid", "1").Number(), ErrorNumber::UnknownZone);
    EXPECT_EQ(ErrorOf("State Plane (nad83)", "0407").Number(), ErrorNumber::UnknownZone);
}

TEST(ChooseGrid, SaysWhatIsExpectedWhenAZoneIsMissing) {
    EXPECT_THAT(ErrorOf("UTM (ed50)", "").what(), testing::HasSubstr("from 1 to 60"));
    EXPECT_THAT(ErrorOf("State Plane (nad27)", "").what(), testing::HasSubstr("\"0101 Alabama East\""));
    EXPECT_THAT(ErrorOf("Bundesmeldenetz", "").what(), testing::HasSubstr("\"M28\", \"M31\", \"M34\""));
}
