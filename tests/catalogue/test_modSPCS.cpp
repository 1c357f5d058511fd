#include "catalogue/modSPCS.h"

#include "catalogue/FillTables.h"
#include "coordinates/QuorvantGrid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

struct Row {
    std::string_view code;
    std::string_view name;
};

// Both tables written out, independently of the one they are derived from.
// clang-format off
constexpr std::array<Row, 131> Nad27{{
    {"0101", "Alabama East"}, {"0102", "Alabama West"}, {"5002", "Alaska Zone 2"},
    {"5003", "Alaska Zone 3"}, {"5004", "Alaska Zone 4"}, {"5005", "Alaska Zone 5"},
    {"5006", "Alaska Zone 6"}, {"5007", "Alaska Zone 7"}, {"5008", "Alaska Zone 8"},
    {"5009", "Alaska Zone 9"}, {"5010", "Alaska Zone 10"}, {"0201", "Arizona East"},
    {"0202", "Arizona Central"}, {"0203", "Arizona West"}, {"0301", "Arkansas North"},
    {"0302", "Arkansas South"}, {"0401", "California Zone 1"}, {"0402", "California Zone 2"},
    {"0403", "California Zone 3"}, {"0404", "California Zone 4"}, {"0405", "California Zone 5"},
    {"0406", "California Zone 6"}, {"0407", "California Zone 7"}, {"0501", "Colorado North"},
    {"0502", "Colorado Central"}, {"0503", "Colorado South"}, {"0600", "Connecticut"}, {"0700", "Delaware"},
    {"0901", "Florida East"}, {"0902", "Florida West"}, {"0903", "Florida North"}, {"1001", "Georgia East"},
    {"1002", "Georgia West"}, {"5101", "Hawaii Zone 1"}, {"5102", "Hawaii Zone 2"},
    {"5103", "Hawaii Zone 3"}, {"5104", "Hawaii Zone 4"}, {"5105", "Hawaii Zone 5"}, {"1101", "Idaho East"},
    {"1102", "Idaho Central"}, {"1103", "Idaho West"}, {"1201", "Illinois East"}, {"1202", "Illinois West"},
    {"1301", "Indiana East"}, {"1302", "Indiana West"}, {"1401", "Iowa North"}, {"1402", "Iowa South"},
    {"1501", "Kansas North"}, {"1502", "Kansas South"}, {"1601", "Kentucky North"},
    {"1602", "Kentucky South"}, {"1701", "Louisiana North"}, {"1702", "Louisiana South"},
    {"1703", "Louisiana Offshore"}, {"1801", "Maine East"}, {"1802", "Maine West"}, {"1900", "Maryland"},
    {"2001", "Massachusetts Mainland"}, {"2002", "Massachusetts Island"}, {"2101", "Michigan East (old)"},
    {"2102", "Michigan Central (old)"}, {"2103", "Michigan West (old)"}, {"2111", "Michigan North"},
    {"2112", "Michigan Central"}, {"2113", "Michigan South"}, {"2201", "Minnesota North"},
    {"2202", "Minnesota Central"}, {"2203", "Minnesota South"}, {"2301", "Mississippi East"},
    {"2302", "Mississippi West"}, {"2401", "Missouri East"}, {"2402", "Missouri Central"},
    {"2403", "Missouri West"}, {"2501", "Montana North"}, {"2502", "Montana Central"},
    {"2503", "Montana South"}, {"2601", "Nebraska North"}, {"2602", "Nebraska South"},
    {"2701", "Nevada East"}, {"2702", "Nevada Central"}, {"2703", "Nevada West"}, {"2800", "New Hampshire"},
    {"2900", "New Jersey"}, {"3001", "New Mexico East"}, {"3002", "New Mexico Central"},
    {"3003", "New Mexico West"}, {"3101", "New York East"}, {"3102", "New York Central"},
    {"3103", "New York West"}, {"3104", "New York Long Island"}, {"3200", "North Carolina"},
    {"3301", "North Dakota North"}, {"3302", "North Dakota South"}, {"3401", "Ohio North"},
    {"3402", "Ohio South"}, {"3501", "Oklahoma North"}, {"3502", "Oklahoma South"},
    {"3601", "Oregon North"}, {"3602", "Oregon South"}, {"3701", "Pennsylvania North"},
    {"3702", "Pennsylvania South"}, {"3800", "Rhode Island"}, {"3901", "South Carolina North"},
    {"3902", "South Carolina South"}, {"4001", "South Dakota North"}, {"4002", "South Dakota South"},
    {"4100", "Tennessee"}, {"4201", "Texas North"}, {"4202", "Texas North Central"},
    {"4203", "Texas Central"}, {"4204", "Texas South Central"}, {"4205", "Texas South"},
    {"4301", "Utah North"}, {"4302", "Utah Central"}, {"4303", "Utah South"}, {"4400", "Vermont"},
    {"4501", "Virginia North"}, {"4502", "Virginia South"}, {"4601", "Washington North"},
    {"4602", "Washington South"}, {"4701", "West Virginia North"}, {"4702", "West Virginia South"},
    {"4801", "Wisconsin North"}, {"4802", "Wisconsin Central"}, {"4803", "Wisconsin South"},
    {"4901", "Wyoming East"}, {"4902", "Wyoming East Central"}, {"4903", "Wyoming West Central"},
    {"4904", "Wyoming West"}, {"5201", "Puerto Rico North"}, {"5202", "Puerto Rico South"},
}};

constexpr std::array<Row, 123> Nad83{{
    {"0101", "Alabama East"}, {"0102", "Alabama West"}, {"5002", "Alaska Zone 2"},
    {"5003", "Alaska Zone 3"}, {"5004", "Alaska Zone 4"}, {"5005", "Alaska Zone 5"},
    {"5006", "Alaska Zone 6"}, {"5007", "Alaska Zone 7"}, {"5008", "Alaska Zone 8"},
    {"5009", "Alaska Zone 9"}, {"5010", "Alaska Zone 10"}, {"0201", "Arizona East"},
    {"0202", "Arizona Central"}, {"0203", "Arizona West"}, {"0301", "Arkansas North"},
    {"0302", "Arkansas South"}, {"0401", "California Zone 1"}, {"0402", "California Zone 2"},
    {"0403", "California Zone 3"}, {"0404", "California Zone 4"}, {"0405", "California Zone 5"},
    {"0406", "California Zone 6"}, {"0501", "Colorado North"}, {"0502", "Colorado Central"},
    {"0503", "Colorado South"}, {"0600", "Connecticut"}, {"0700", "Delaware"}, {"0901", "Florida East"},
    {"0902", "Florida West"}, {"0903", "Florida North"}, {"1001", "Georgia East"}, {"1002", "Georgia West"},
    {"5101", "Hawaii Zone 1"}, {"5102", "Hawaii Zone 2"}, {"5103", "Hawaii Zone 3"},
    {"5104", "Hawaii Zone 4"}, {"5105", "Hawaii Zone 5"}, {"1101", "Idaho East"}, {"1102", "Idaho Central"},
    {"1103", "Idaho West"}, {"1201", "Illinois East"}, {"1202", "Illinois West"}, {"1301", "Indiana East"},
    {"1302", "Indiana West"}, {"1401", "Iowa North"}, {"1402", "Iowa South"}, {"1501", "Kansas North"},
    {"1502", "Kansas South"}, {"1601", "Kentucky North"}, {"1602", "Kentucky South"},
    {"1701", "Louisiana North"}, {"1702", "Louisiana South"}, {"1703", "Louisiana Offshore"},
    {"1801", "Maine East"}, {"1802", "Maine West"}, {"1900", "Maryland"},
    {"2001", "Massachusetts Mainland"}, {"2002", "Massachusetts Island"}, {"2111", "Michigan North"},
    {"2112", "Michigan Central"}, {"2113", "Michigan South"}, {"2201", "Minnesota North"},
    {"2202", "Minnesota Central"}, {"2203", "Minnesota South"}, {"2300", "Mississippi MSTM"},
    {"2301", "Mississippi East"}, {"2302", "Mississippi West"}, {"2401", "Missouri East"},
    {"2402", "Missouri Central"}, {"2403", "Missouri West"}, {"2500", "Montana"}, {"2600", "Nebraska"},
    {"2701", "Nevada East"}, {"2702", "Nevada Central"}, {"2703", "Nevada West"}, {"2800", "New Hampshire"},
    {"2900", "New Jersey"}, {"3001", "New Mexico East"}, {"3002", "New Mexico Central"},
    {"3003", "New Mexico West"}, {"3101", "New York East"}, {"3102", "New York Central"},
    {"3103", "New York West"}, {"3104", "New York Long Island"}, {"3200", "North Carolina"},
    {"3301", "North Dakota North"}, {"3302", "North Dakota South"}, {"3401", "Ohio North"},
    {"3402", "Ohio South"}, {"3501", "Oklahoma North"}, {"3502", "Oklahoma South"},
    {"3601", "Oregon North"}, {"3602", "Oregon South"}, {"3701", "Pennsylvania North"},
    {"3702", "Pennsylvania South"}, {"3800", "Rhode Island"}, {"3900", "South Carolina"},
    {"4001", "South Dakota North"}, {"4002", "South Dakota South"}, {"4100", "Tennessee"},
    {"4201", "Texas North"}, {"4202", "Texas North Central"}, {"4203", "Texas Central"},
    {"4204", "Texas South Central"}, {"4205", "Texas South"}, {"4301", "Utah North"},
    {"4302", "Utah Central"}, {"4303", "Utah South"}, {"4400", "Vermont"}, {"4501", "Virginia North"},
    {"4502", "Virginia South"}, {"4601", "Washington North"}, {"4602", "Washington South"},
    {"4701", "West Virginia North"}, {"4702", "West Virginia South"}, {"4801", "Wisconsin North"},
    {"4802", "Wisconsin Central"}, {"4803", "Wisconsin South"}, {"4901", "Wyoming East"},
    {"4902", "Wyoming East Central"}, {"4903", "Wyoming West Central"}, {"4904", "Wyoming West"},
    {"5200", "Puerto Rico"},
}};
// clang-format on

} // namespace

TEST(StatePlaneTable, HasEveryRowOfNad27InItsOrder) {
    for (std::size_t i = 0; i < Nad27.size(); ++i) {
        EXPECT_EQ(SpcsNad27Code.at(i), Nad27[i].code);
        EXPECT_EQ(SpcsNad27Name.at(i), Nad27[i].name);
    }
    EXPECT_EQ(SpcsNad27Code.at(130), "5202");
    EXPECT_EQ(SpcsNad27Name.at(130), "Puerto Rico South");
}

TEST(StatePlaneTable, HasEveryRowOfNad83InItsOrder) {
    for (std::size_t i = 0; i < Nad83.size(); ++i) {
        EXPECT_EQ(SpcsNad83Code.at(i), Nad83[i].code);
        EXPECT_EQ(SpcsNad83Name.at(i), Nad83[i].name);
    }
    EXPECT_EQ(SpcsNad83Code.at(122), "5200");
    EXPECT_EQ(SpcsNad83Name.at(122), "Puerto Rico");
}

TEST(StatePlaneTable, FailsBeyondItsBounds) {
    EXPECT_THROW(static_cast<void>(SpcsNad27Code.at(131)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(SpcsNad27Name.at(131)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(SpcsNad83Code.at(123)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(SpcsNad83Name.at(123)), std::out_of_range);
}

TEST(StatePlaneTable, HasSevenCalifornianZonesOnNad27AndSixOnNad83) {
    const auto californian = [](std::string_view name) { return name.starts_with("California"); };
    EXPECT_EQ(std::ranges::count_if(SpcsNad27Name, californian), 7);
    EXPECT_EQ(std::ranges::count_if(SpcsNad83Name, californian), 6);
}

TEST(StatePlaneTable, HandsOnCodesThatAreGrids) {
    FillStatePlaneZones();
    const auto isGrid = [](std::int16_t identifier, std::string_view code) {
        const int zone = std::stoi(std::string(code));
        return MakeGrid(identifier, zone).AsNumbers().zone == zone;
    };
    for (const std::string_view code : SpcsNad27Code)
        EXPECT_TRUE(isGrid(30, code)) << code;
    for (const std::string_view code : SpcsNad83Code)
        EXPECT_TRUE(isGrid(31, code)) << code;
}
