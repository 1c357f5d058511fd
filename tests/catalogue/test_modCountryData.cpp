#include "catalogue/modCountryData.h"

#include "catalogue/FillTables.h"
#include "catalogue/modCountryGadgets.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(Countries, StandInTheOrderOfTheList) {
    EXPECT_THAT(Countries, ElementsAre("<Custom>", "International", "United States", "Australia", "Austria",
                                       "Belgium", "Denmark", "Finland", "France", "Germany", "Great Britain",
                                       "Ireland", "Italy", "Luxembourg", "New Zealand", "The Netherlands",
                                       "Norway", "Sweden", "Switzerland"));
}

TEST(Countries, HaveListsInTheSameOrderButForCustom) {
    const auto table = CountryTable();
    ASSERT_EQ(table.size() + 1, Countries.size());
    for (std::size_t i = 0; i < table.size(); ++i)
        EXPECT_EQ(table[i].country, Countries[i + 1]);
}

TEST(Directions, BeginWithEastAndNorth) {
    EXPECT_THAT(EastWest, ElementsAre("East", "West"));
    EXPECT_THAT(NorthSouth, ElementsAre("North", "South"));
}

TEST(Fill, MayBeCalledAgainInTheOrderOfStartUp) {
    for (int i = 0; i < 2; ++i) {
        FillCountries();
        FillGridsAndDatums();
        FillZones();
    }
    EXPECT_EQ(CountryTable().size(), 18u);
    EXPECT_EQ(ZoneListTable().size(), 5u);
}

TEST(Grids, StandInTheOrderOfEachCountry) {
    const auto european = [](const char* own) {
        return ElementsAre(own, "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)");
    };
    EXPECT_THAT(GridsOf("International"),
                ElementsAre("UTM North (wgs84)", "UTM South (wgs84)", "UTM (etrs89)", "UTM (ed50)"));
    EXPECT_THAT(GridsOf("United States"), ElementsAre("UTM (nad83)", "UTM (nad27)", "State Plane (nad83)",
                                                      "State Plane (nad27)", "UTM North (wgs84)"));
    EXPECT_THAT(GridsOf("Australia"), ElementsAre("Australian Map Grid (amg84)",
                                                  "Map Grid of Australia (mga94)", "UTM South (wgs84)"));
    EXPECT_THAT(GridsOf("Austria"), european("Bundesmeldenetz"));
    EXPECT_THAT(GridsOf("Belgium"), european("Belgium Grid"));
    EXPECT_THAT(GridsOf("Denmark"), ElementsAre("System 34 (Main land)", "System 45 (Bornholm)",
                                                "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50 Denmark)"));
    EXPECT_THAT(GridsOf("Finland"), european("Finnish Grid"));
    EXPECT_THAT(GridsOf("France"),
                ElementsAre("French Grid (ntf)", "French Grid (rgf93)", "France Lambert 2 Etendu",
                            "UTM North (wgs84)", "UTM (etrs89)", "UTM (ed50)"));
    EXPECT_THAT(GridsOf("Germany"), european("German Grid (Potsdam)"));
    EXPECT_THAT(GridsOf("Great Britain"), european("British National Grid"));
    EXPECT_THAT(GridsOf("Ireland"), european("Irish National Grid"));
    EXPECT_THAT(GridsOf("Italy"), european("Gauss Boaga (roma40)"));
    EXPECT_THAT(GridsOf("Luxembourg"), european("Luxembourg Grid (luref)"));
    EXPECT_THAT(GridsOf("New Zealand"),
                ElementsAre("NZ Map Grid (1972)", "NZ Transverse Mercator (2000)", "UTM South (wgs84)"));
    EXPECT_THAT(GridsOf("The Netherlands"), european("Dutch Grid (Amersfoort)"));
    EXPECT_THAT(GridsOf("Norway"), european("Norwegian Grid (ngo48)"));
    EXPECT_THAT(GridsOf("Sweden"), european("Swedish Grid (rt90)"));
    EXPECT_THAT(GridsOf("Switzerland"), european("Swiss Grid (ch1903)"));
}

TEST(Datums, StandInTheOrderOfEachCountry) {
    const auto european = [](const char* own) { return ElementsAre("WGS84", own, "ETRS89", "ED50"); };
    EXPECT_THAT(DatumsOf("International"), ElementsAre("WGS84", "WGS72", "ETRS89", "ED50"));
    EXPECT_THAT(DatumsOf("United States"), ElementsAre("WGS84", "NAD83", "NAD27 (East)", "NAD27 (Conus)",
                                                       "NAD27 (West)", "NAD27 (Alaska)"));
    EXPECT_THAT(DatumsOf("Australia"), ElementsAre("WGS84", "AGD84", "GDA94"));
    EXPECT_THAT(DatumsOf("Austria"), european("MGI (Hermannskugel)"));
    EXPECT_THAT(DatumsOf("Belgium"), european("BD72"));
    EXPECT_THAT(DatumsOf("Denmark"), ElementsAre("WGS84", "ETRS89", "ED50 Denmark"));
    EXPECT_THAT(DatumsOf("Finland"), european("Finland Hayford"));
    EXPECT_THAT(DatumsOf("France"), european("NTF"));
    EXPECT_THAT(DatumsOf("Germany"), european("Potsdam"));
    EXPECT_THAT(DatumsOf("Great Britain"), european("OSGB36"));
    EXPECT_THAT(DatumsOf("Ireland"), european("Ireland 65"));
    EXPECT_THAT(DatumsOf("Italy"), european("ROMA40"));
    EXPECT_THAT(DatumsOf("Luxembourg"), european("LUREF"));
    EXPECT_THAT(DatumsOf("New Zealand"), ElementsAre("WGS84", "NZGD49", "NZGD2000"));
    EXPECT_THAT(DatumsOf("The Netherlands"), european("Amersfoort"));
    EXPECT_THAT(DatumsOf("Norway"), european("NGO48"));
    EXPECT_THAT(DatumsOf("Sweden"), european("RT90"));
    EXPECT_THAT(DatumsOf("Switzerland"), european("CH1903"));
}

TEST(ZoneLists, StandInTheirOrder) {
    EXPECT_THAT(ZonesOf("Norwegian Grid (ngo48)"),
                ElementsAre("Zone (Akse) 1", "Zone (Akse) 2", "Zone (Akse) 3", "Zone (Akse) 4",
                            "Zone (Akse) 5", "Zone (Akse) 6", "Zone (Akse) 7", "Zone (Akse) 8"));
    EXPECT_THAT(ZonesOf("Finnish Grid"), ElementsAre("Zone 1", "Zone 2", "Zone 3 (Whole country)", "Zone 4"));
    EXPECT_THAT(ZonesOf("Gauss Boaga (roma40)"), ElementsAre("West (Fuso Ovest)", "East (Fuso Est)"));
    EXPECT_THAT(ZonesOf("French Grid (ntf)"),
                ElementsAre("Zone 1 (North)", "Zone 2", "Zone 3 (South)", "Zone 4 (Corsica)"));
    EXPECT_THAT(ZonesOf("Bundesmeldenetz"), ElementsAre("M28", "M31", "M34"));
}
