#include "coordinates/CoordinateText.h"

#include <gtest/gtest.h>

namespace {

struct AngleCase {
    const char* text;
    double latitude;
    double longitude;
};

constexpr double Copenhagen = 55 + 40 / 60.0 + 34 / 3600.0;
constexpr double CopenhagenEast = 12 + 34 / 60.0 + 8 / 3600.0;

} // namespace

TEST(WrittenLonLat, IsReadInTheFormsInUse) {
    const std::vector<AngleCase> cases{
        {"55°40'34\"N 12°34'08\"E", Copenhagen, CopenhagenEast},
        {"55° 40' 34\" N, 12° 34' 8\" E", Copenhagen, CopenhagenEast},
        {"55º40′34″N 12º34′08″E", Copenhagen, CopenhagenEast},
        {"N 55 40 34 E 12 34 8", Copenhagen, CopenhagenEast},
        {"55 40 34 n\t12 34 8 e", Copenhagen, CopenhagenEast},
        {"12°34'08\"E 55°40'34\"N", Copenhagen, CopenhagenEast},
        {"55°40'34\" 12°34'08\"", Copenhagen, CopenhagenEast},
        {"55.676 12.569", 55.676, 12.569},
        {"  55.676,12.569 ", 55.676, 12.569},
        {"55.676; 12.569", 55.676, 12.569},
        {"55; 12", 55, 12},
        {"55, 12", 55, 12},
        {"55° 40' 34\" 12° 34' 8\"", Copenhagen, CopenhagenEast},
        {"-33.5° -70.25°", -33.5, -70.25},
        {"-33°30', -70°15'", -33.5, -70.25},
        {"55° 12°", 55, 12},
        {"N55 E12", 55, 12},
        {"-33.9, -70.5", -33.9, -70.5},
        {"\u221233.9 \u221270.5", -33.9, -70.5},
        {"33.9S 70.5W", -33.9, -70.5},
        {"55°40.5'N 12°30.25'E", 55.675, 12 + 30.25 / 60},
        {"0.0 0.0", 0, 0},
    };
    for (const AngleCase& row : cases) {
        const auto position = ParseLonLat(row.text, '.');
        ASSERT_TRUE(position.has_value()) << row.text;
        EXPECT_NEAR(position->latitude, row.latitude, 1e-12) << row.text;
        EXPECT_NEAR(position->longitude, row.longitude, 1e-12) << row.text;
    }
}

TEST(WrittenLonLat, IsNothingElse) {
    for (const char* const text :
         {"", "55.676", "55.676 12.569 3", "91 12", "55 361", "55°60'N 12°E", "55.5°30'N 12°E", "55N 12N",
          "55E 12E", "-55N 12E", "abc def", "N", "N E", "55,676 12,569", "1,234 5", "nan inf", "0x10 5",
          "55N 12", "55 12E 3", "55°40'34\"N",
          // One angle, and numbers that somebody's grouping or decimal sign has cut in two.
          "12,345", "55 40", "55 40.5", "55.5 12", "55°40'", "55° 40.5'", "55° 40", "0 0", "1,5", "12,5",
          "12.5,30", "40'"}) {
        EXPECT_FALSE(ParseLonLat(text, '.').has_value()) << text;
    }
}

TEST(WrittenLonLat, MayHaveADecimalCommaWhereTheUserHas) {
    for (const char* const text :
         {"55,676 12,569", "55,676; 12,569", "55,676, 12,569", "55.676 12.569", "55.676,12.569"}) {
        const auto position = ParseLonLat(text, ',');
        ASSERT_TRUE(position.has_value()) << text;
        EXPECT_DOUBLE_EQ(position->latitude, 55.676) << text;
        EXPECT_DOUBLE_EQ(position->longitude, 12.569) << text;
    }
}

TEST(WrittenLonLat, IsNoBlankBetweenTwoNumbersWhereOneAngleIsWrittenInParts) {
    const auto read = [](const char* text) {
        return ParseLonLat(text, '.', WrittenAs::PartOfAngle).has_value();
    };
    EXPECT_FALSE(read("55.676 12.569"));
    EXPECT_FALSE(read("-33.9 -70.5"));
    EXPECT_TRUE(read("55.676, 12.569"));
    EXPECT_TRUE(read("55.676,12.569"));
    EXPECT_TRUE(read("55.676; 12.569"));
    EXPECT_TRUE(read("55 40 34 N 12 34 8 E"));
    EXPECT_TRUE(read("55°40'34\" 12°34'08\""));
}

TEST(WrittenEastNorth, IsReadInTheFormsInUse) {
    for (const char* const text : {"32633 6173000", "32633, 6173000", "32633; 6173000", "32633.0,6173000.0",
                                   "E 32633 N 6173000", "6173000N 32633E", "32633.0\n6173000"}) {
        const auto position = ParseEastNorth(text, '.');
        ASSERT_TRUE(position.has_value()) << text;
        EXPECT_EQ(position->easting, 32633) << text;
        EXPECT_EQ(position->northing, 6173000) << text;
    }
    EXPECT_EQ(ParseEastNorth("-1.5 -2", '.')->easting, -1.5);
}

TEST(WrittenEastNorth, IsNothingElse) {
    for (const char* const text :
         {"", "32633", "1 2 3", "32633W 6173000N", "32633E 6173000E", "1e5 2e5", "a b", "55°40'N 12°E",
          "32633E 6173000",
          // One number in groups, or with another country's decimal comma.
          "617,300", "32633,5", "617,300.5", "617 300", "-617 300.25", "6 173 000", "617,300 6,173,000"})
        EXPECT_FALSE(ParseEastNorth(text, '.').has_value()) << text;
}

TEST(WrittenEastNorth, IsNoNumberThatTheUsersCountryGroupsOrCutsByAComma) {
    for (const char* const text : {"617.300", "617.300,25", "32633,5", "617 300,25", "617.300 6.173.000"})
        EXPECT_FALSE(ParseEastNorth(text, ',').has_value()) << text;
    const auto both = ParseEastNorth("32633,5 6173000,25", ',');
    ASSERT_TRUE(both.has_value());
    EXPECT_EQ(both->easting, 32633.5);
    EXPECT_EQ(both->northing, 6173000.25);
}

TEST(Directions, AreLettersButNoExponents) {
    for (const char* const text : {"55N 12E", "n 1 e 2", "9°30'W", "E 500000 N 6100000", "5E"})
        EXPECT_TRUE(HasDirections(text)) << text;
    for (const char* const text : {"", "12.5 55.75", "1e5 2E-3", "1.e5", "9°30' 48°", "x"})
        EXPECT_FALSE(HasDirections(text)) << text;
}
