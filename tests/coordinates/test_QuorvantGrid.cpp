#include "coordinates/QuorvantGrid.h"

#include "tests/coordinates/ErrorOf.h"

#include <gtest/gtest.h>

#include <set>

namespace {

constexpr int TypedIdentifiers[]{1, 2, 13, 15, 16, 28, 29, 32, 33, 47};
constexpr int StatePlaneIdentifiers[]{30, 31};

QuorvantGrid Make(int identifier, int zone) {
    return MakeGrid(static_cast<std::int16_t>(identifier), zone);
}

} // namespace

TEST(MakeGrid, KnowsTheIdentifiersOfTheCatalogueOnly) {
    const std::set<int> typed(std::begin(TypedIdentifiers), std::end(TypedIdentifiers));
    for (int identifier = 1; identifier <= 49; ++identifier) {
        if (identifier == 5 || identifier == 8 || identifier == 46)
            continue;
        const int zone = typed.contains(identifier) ? 1 : identifier == 30 || identifier == 31 ? 101 : 0;
        EXPECT_NO_THROW(Make(identifier, zone)) << identifier;
    }
    for (const int identifier : {-32768, -1, 0, 5, 8, 46, 50, 32767})
        EXPECT_EQ(ErrorOf([&] { Make(identifier, 1); }), ErrorNumber::UnknownGrid) << identifier;
}

TEST(MakeGrid, TakesTypedZonesFrom1To60Only) {
    for (const int identifier : TypedIdentifiers) {
        for (int zone = 1; zone <= 60; ++zone)
            EXPECT_EQ(Make(identifier, zone).AsNumbers().zone, zone);
        for (const int zone : {-1, 0, 61, 2147483647})
            EXPECT_EQ(ErrorOf([&] { Make(identifier, zone); }), ErrorNumber::UnknownZone) << identifier;
    }
}

TEST(MakeGrid, RefusesStatePlaneZonesThatThereAreNot) {
    for (const int identifier : StatePlaneIdentifiers) {
        for (const int zone : {-101, 0, 1, 100, 5001, 1600, 9999, 2147483647})
            EXPECT_EQ(ErrorOf([&] { Make(identifier, zone); }), ErrorNumber::UnknownZone) << zone;
    }
    EXPECT_EQ(ErrorOf([] { Make(31, 407); }), ErrorNumber::UnknownZone); // California zone 7 is of 1927
    EXPECT_EQ(ErrorOf([] { Make(30, 2300); }),
              ErrorNumber::UnknownZone); // Mississippi's own system is of 1983
}

TEST(MakeGrid, IgnoresTheZoneOfEveryOtherGrid) {
    EXPECT_EQ(Make(3, 0), Make(3, 99));
    EXPECT_EQ(Make(11, 0), Make(11, -7));
    EXPECT_EQ(Make(48, 0), Make(48, 2));
}

TEST(MakeGrid, NumbersListZonesFrom1) {
    for (const int first : {9, 17, 23, 35, 37}) {
        const int count = first == 9 || first == 23 ? 4 : first == 17 ? 3 : first == 35 ? 2 : 8;
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(Make(first + i, 0).AsNumbers().zone, i + 1) << first + i;
    }
    for (const int single : {3, 4, 6, 7, 14, 20, 21, 22, 27, 34, 45, 48})
        EXPECT_EQ(Make(single, 0).AsNumbers().zone, 0) << single;
    EXPECT_EQ(Make(49, 0).AsNumbers().zone, 3);
}

TEST(MakeGrid, GivesEachGridItsOwnDatum) {
    const struct {
        int identifier;
        int zone;
        int datum;
    } rows[]{{1, 33, 1},  {2, 33, 1},   {3, 0, 3},    {4, 0, 6},    {6, 0, 5},    {7, 0, 4},    {9, 0, 7},
             {10, 0, 7},  {11, 0, 7},   {12, 0, 7},   {13, 33, 2},  {14, 0, 8},   {15, 55, 10}, {16, 55, 11},
             {17, 0, 12}, {18, 0, 12},  {19, 0, 12},  {20, 0, 14},  {21, 0, 13},  {22, 0, 16},  {23, 0, 15},
             {24, 0, 15}, {25, 0, 15},  {26, 0, 15},  {27, 0, 2},   {28, 33, 17}, {29, 3, 18},  {32, 1, 20},
             {32, 9, 20}, {32, 10, 22}, {32, 58, 22}, {32, 59, 20}, {32, 60, 20}, {33, 9, 19},  {34, 0, 24},
             {35, 0, 25}, {36, 0, 25},  {37, 0, 26},  {38, 0, 26},  {39, 0, 26},  {40, 0, 26},  {41, 0, 26},
             {42, 0, 26}, {43, 0, 26},  {44, 0, 26},  {45, 0, 15},  {47, 32, 27}};
    for (const auto& row : rows)
        EXPECT_EQ(Make(row.identifier, row.zone).Datum(), MakeDatum(static_cast<std::int16_t>(row.datum)))
            << row.identifier << " " << row.zone;
}

TEST(MakeGrid, GivesTheDanishGridsTheDatumOfTheirPolynomials) {
    const QuorvantDatum::Numbers td32{6378388, 0.006722670022333, -81.0703, -89.3603, -115.7526,
                                      0.48488, 0.02436,           0.41321,  -0.540645};
    EXPECT_EQ(Make(48, 0).Datum().AsNumbers(), td32);
    EXPECT_EQ(Make(49, 0).Datum().AsNumbers(), td32);
}
