#include "catalogue/modCountryGadgets.h"

#include "base/ComponentError.h"
#include "catalogue/modCountryData.h"
#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"
#include "coordinates/SystemNames.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

const std::map<std::string, int> Identifiers{
    {"UTM North (wgs84)", 1},
    {"UTM South (wgs84)", 2},
    {"British National Grid", 3},
    {"Irish National Grid", 4},
    {"Swedish Grid (rt90)", 6},
    {"Swiss Grid (ch1903)", 7},
    {"Finnish Grid", 9},
    {"UTM (etrs89)", 13},
    {"Luxembourg Grid (luref)", 14},
    {"Australian Map Grid (amg84)", 15},
    {"Map Grid of Australia (mga94)", 16},
    {"Bundesmeldenetz", 17},
    {"NZ Transverse Mercator (2000)", 20},
    {"NZ Map Grid (1972)", 21},
    {"Belgium Grid", 22},
    {"French Grid (ntf)", 23},
    {"French Grid (rgf93)", 27},
    {"UTM (ed50)", 28},
    {"German Grid (Potsdam)", 29},
    {"State Plane (nad27)", 30},
    {"State Plane (nad83)", 31},
    {"UTM (nad27)", 32},
    {"UTM (nad83)", 33},
    {"Dutch Grid (Amersfoort)", 34},
    {"Gauss Boaga (roma40)", 35},
    {"Norwegian Grid (ngo48)", 37},
    {"France Lambert 2 Etendu", 45},
    {"UTM (ed50 Denmark)", 47},
    {"System 34 (Main land)", 48},
    {"System 45 (Bornholm)", 49},
};

const std::set<std::string> NumericZoneGrids{"UTM (ed50)",
                                             "UTM (etrs89)",
                                             "UTM (nad27)",
                                             "UTM (nad83)",
                                             "UTM North (wgs84)",
                                             "UTM South (wgs84)",
                                             "German Grid (Potsdam)",
                                             "Australian Map Grid (amg84)",
                                             "Map Grid of Australia (mga94)",
                                             "UTM (ed50 Denmark)"};

std::set<std::string> OfferedGrids() {
    std::set<std::string> grids;
    for (const auto& row : CountryTable())
        grids.insert(row.grids.begin(), row.grids.end());
    return grids;
}

} // namespace

TEST(GridIdentifier, IsTheOneOfTheTableForEveryGrid) {
    for (const auto& [grid, identifier] : Identifiers)
        EXPECT_EQ(GridIdentifier(grid, 0), identifier) << grid;
}

TEST(GridIdentifier, ExistsForEveryGridOfferedAndForNoOther) {
    std::set<std::string> known;
    for (const auto& [grid, identifier] : Identifiers)
        known.insert(grid);
    EXPECT_EQ(OfferedGrids(), known);
}

TEST(GridIdentifier, AddsTheZoneOfAListZoneGrid) {
    EXPECT_EQ(GridIdentifier("Finnish Grid", 2), 11);
    EXPECT_EQ(GridIdentifier("Norwegian Grid (ngo48)", 7), 44);
    EXPECT_EQ(GridIdentifier("Bundesmeldenetz", 2), 19);
    EXPECT_EQ(GridIdentifier("French Grid (ntf)", 3), 26);
    EXPECT_EQ(GridIdentifier("Gauss Boaga (roma40)", 1), 36);
    EXPECT_EQ(GridIdentifier("Finnish Grid", -1), 8); // the place is not checked against the list
}

TEST(GridIdentifier, LeadsBackToTheText) {
    for (const CountryRow& country : CountryTable()) {
        for (const std::string_view grid : country.grids)
            EXPECT_EQ(GridText(GridIdentifier(grid, 0)), grid);
        for (const std::string_view datum : country.datums)
            EXPECT_EQ(DatumText(DatumIdentifier(datum)), datum);
    }
    for (const ZoneListRow& list : ZoneListTable())
        for (std::size_t zone = 0; zone < list.zones.size(); ++zone)
            EXPECT_EQ(GridText(GridIdentifier(list.grid, static_cast<std::int16_t>(zone))), list.grid);
    for (const std::int32_t identifier : {-1, 0, 5, 8, 46, 50, 70000})
        EXPECT_EQ(GridText(identifier), "") << identifier;
    for (const std::int32_t identifier : {-1, 0, 28, 70000})
        EXPECT_EQ(DatumText(identifier), "") << identifier;
}

TEST(GridIdentifier, IgnoresTheZoneOfEveryOtherGrid) {
    EXPECT_EQ(GridIdentifier("UTM North (wgs84)", 32), 1);
    EXPECT_EQ(GridIdentifier("State Plane (nad27)", 32767), 30);
    EXPECT_EQ(GridIdentifier("British National Grid", 5), 3);
}

TEST(GridIdentifier, FailsInsteadOfWrapping) {
    EXPECT_EQ(GridIdentifier("Finnish Grid", 32758), 32767);
    try {
        GridIdentifier("Finnish Grid", 32759);
        FAIL();
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::Overflow);
    }
}

TEST(GridIdentifier, IsZeroForATextThatDiffersByABlankOrACase) {
    for (const char* text :
         {"", "UTM North (wgs84) ", " Belgium Grid", "belgium grid", "<Custom>", "WGS84", "Zone 1"})
        EXPECT_EQ(GridIdentifier(text, 0), 0) << text;
}

TEST(GridIdentifier, StandsForAGridOfTheCoordinateComponentInEveryZone) {
    for (const std::string& grid : OfferedGrids()) {
        const bool list = !ZonesOf(grid).empty() && !grid.starts_with("State Plane");
        const int zones = list ? static_cast<int>(ZonesOf(grid).size()) : 1;
        const int zone = NumericZoneGrids.contains(grid) ? 31 : grid.starts_with("State Plane") ? 4204 : 0;
        for (int i = 0; i < zones; ++i)
            EXPECT_NO_THROW(MakeGrid(GridIdentifier(grid, static_cast<std::int16_t>(i)), zone)) << grid << i;
    }
}

TEST(DatumIdentifier, CountsTheDatumsFrom1To27) {
    const std::array<const char*, 27> datums{"WGS84",
                                             "ETRS89",
                                             "OSGB36",
                                             "CH1903",
                                             "RT90",
                                             "Ireland 65",
                                             "Finland Hayford",
                                             "LUREF",
                                             "WGS72",
                                             "AGD84",
                                             "GDA94",
                                             "MGI (Hermannskugel)",
                                             "NZGD49",
                                             "NZGD2000",
                                             "NTF",
                                             "BD72",
                                             "ED50",
                                             "Potsdam",
                                             "NAD83",
                                             "NAD27 (Alaska)",
                                             "NAD27 (East)",
                                             "NAD27 (Conus)",
                                             "NAD27 (West)",
                                             "Amersfoort",
                                             "ROMA40",
                                             "NGO48",
                                             "ED50 Denmark"};
    std::set<std::string> offered;
    for (const auto& row : CountryTable())
        offered.insert(row.datums.begin(), row.datums.end());
    EXPECT_EQ(offered, std::set<std::string>(datums.begin(), datums.end()));
    for (std::size_t i = 0; i < datums.size(); ++i) {
        EXPECT_EQ(DatumIdentifier(datums[i]), static_cast<int>(i) + 1);
        EXPECT_NO_THROW(MakeDatum(DatumIdentifier(datums[i])));
    }
}

TEST(DatumIdentifier, IsZeroForAnyOtherText) {
    for (const char* text : {"", "wgs84", "WGS84 ", "UTM (ed50)", "NAD27"})
        EXPECT_EQ(DatumIdentifier(text), 0) << text;
}

TEST(GridHasNumericZone, IsTrueForExactlyTenGrids) {
    for (const std::string& grid : OfferedGrids())
        EXPECT_EQ(GridHasNumericZone(grid), NumericZoneGrids.contains(grid)) << grid;
    EXPECT_FALSE(GridHasNumericZone("UTM (ed50) "));
    EXPECT_FALSE(GridHasNumericZone(""));
}

TEST(Lookups, GiveNothingForCustomAndUnknownTexts) {
    for (const char* text : {"<Custom>", "", "denmark", "Denmark "}) {
        EXPECT_TRUE(GridsOf(text).empty()) << text;
        EXPECT_TRUE(DatumsOf(text).empty()) << text;
    }
    for (const char* text : {"UTM (ed50)", "British National Grid", "", "Finnish Grid "})
        EXPECT_TRUE(ZonesOf(text).empty()) << text;
}
