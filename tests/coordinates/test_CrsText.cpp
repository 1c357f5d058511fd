#include "coordinates/CrsText.h"

#include "coordinates/Projection.h"
#include "tests/coordinates/ReferenceProj.h"
#include "tests/support/RunProgram.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cmath>

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

struct CrsCase {
    int identifier;
    int zone;
    ReferenceArea area;
};

// One grid of every method, with its variants and with datums of every kind.
const CrsCase Cases[]{{1, 32, {6, 40, 12, 60}},          {2, 55, {144, -50, 150, -10}},
                      {3, 0, {-6, 50, 2, 60}},           {4, 0, {-10, 51.5, -5.5, 55.5}},
                      {6, 0, {11, 55.5, 24, 69}},        {7, 0, {6, 46, 10.5, 47.8}},
                      {11, 0, {20, 60, 31, 70}},         {14, 0, {5.7, 49.4, 6.5, 50.2}},
                      {15, 55, {144, -40, 150, -12}},    {16, 55, {144, -40, 150, -12}},
                      {18, 0, {11.8, 46.5, 14.8, 48.8}}, {20, 0, {167, -47, 179, -34}},
                      {21, 0, {167, -47, 179, -34}},     {22, 0, {2.5, 49.5, 6.4, 51.5}},
                      {24, 0, {-4, 45.5, 7.5, 48.1}},    {26, 0, {8.5, 41.3, 9.6, 43}},
                      {27, 0, {-4, 42, 8, 51}},          {29, 3, {7.5, 47, 10.5, 55}},
                      {30, 2112, {-87, 43.5, -82, 46}},  {30, 4204, {-105, 27.8, -94, 30.5}},
                      {30, 5010, {-179, 51, -164, 54}},  {30, 5103, {-158.5, 21, -157.5, 22}},
                      {31, 101, {-87, 31, -85, 35}},     {32, 15, {-96, 26, -90, 50}},
                      {34, 0, {3.3, 50.7, 7.2, 53.6}},   {36, 0, {12, 36, 18.5, 47}},
                      {44, 0, {27, 69, 31, 71}},         {45, 0, {-4, 42.5, 8, 51}},
                      {47, 32, {8, 54.5, 12.5, 57.8}}};

QuorvantGrid GridOf(const CrsCase& row) {
    return MakeGrid(static_cast<std::int16_t>(row.identifier), row.zone);
}

json PointsOf(const QuorvantGrid& grid, const ReferenceArea& area) {
    const GridProjection projection(grid.AsNumbers(), grid.Datum());
    const DatumShift shift(grid.Datum());
    json points = json::array();
    for (const LonLat& point : area.Points(4)) {
        const EastNorth plane = projection.Forward(shift.FromWgs84(point));
        points.push_back({point.longitude, point.latitude, plane.easting, plane.northing});
    }
    return points;
}

/// What pyproj and GDAL make of the texts: for each case the largest difference from the expected numbers.
json ReadByOthers(const json& cases) {
    const auto result =
        RunProgram({"/usr/bin/python3", SOURCE_DIR "/tests/coordinates/read_crs.py"}, cases.dump());
    EXPECT_EQ(result.status, 0) << result.err;
    return json::parse(result.out);
}

void ExpectOthersAgree(const json& cases, double tolerance) {
    const json differences = ReadByOthers(cases);
    ASSERT_EQ(differences.size(), cases.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        for (const char* reader : {"pyproj", "gdal"})
            EXPECT_LE(differences[i].at(reader).get<double>(), tolerance)
                << reader << " " << cases[i].at("wkt");
    }
}

} // namespace

TEST(CrsText, OfEveryMethodIsReadAlikeByPyprojAndGdal) {
    json cases = json::array();
    for (const CrsCase& row : Cases) {
        const QuorvantGrid grid = GridOf(row);
        const std::string wkt = CrsAsWkt(grid.Datum(), grid.AsNumbers());
        EXPECT_NE(wkt, "") << row.identifier;
        cases.push_back({{"wkt", wkt}, {"points", PointsOf(grid, row.area)}});
    }
    ExpectOthersAgree(cases, 0.005);
}

TEST(CrsText, OfEveryDatumIsReadAlikeByPyprojAndGdal) {
    json cases = json::array();
    for (std::int16_t identifier = 1; identifier <= 27; ++identifier) {
        const DatumShift shift(MakeDatum(identifier));
        json points = json::array();
        for (const LonLat& point : ReferenceArea{-170, -70, 170, 70}.Points(5)) {
            const LonLat own = shift.FromWgs84(point);
            points.push_back({point.longitude, point.latitude, own.longitude, own.latitude});
        }
        cases.push_back({{"wkt", CrsAsWkt(MakeDatum(identifier), std::nullopt)}, {"points", points}});
    }
    ExpectOthersAgree(cases, 1e-7); // degrees, 1 cm
}

TEST(CrsText, IsBoundToWgs84ExactlyWhereThereIsAShift) {
    for (std::int16_t identifier = 1; identifier <= 27; ++identifier) {
        const bool shifted = identifier != 1 && FindDatumIdentifier(MakeDatum(identifier)) != 2;
        const std::string wkt = CrsAsWkt(MakeDatum(identifier), std::nullopt);
        EXPECT_EQ(wkt.starts_with("BOUNDCRS"), shifted) << wkt;
        EXPECT_EQ(wkt.starts_with("GEOGCRS"), !shifted) << wkt;
    }
    EXPECT_THAT(CrsAsWkt(MakeDatum(1), MakeGrid(1, 32).AsNumbers()), HasSubstr("World Geodetic System 1984"));
}

TEST(CrsText, IsEmptyWhereThereIsNoSuchText) {
    EXPECT_EQ(CrsAsWkt(MakeGrid(48, 0).Datum(), MakeGrid(48, 0).AsNumbers()), "");
    EXPECT_EQ(CrsAsWkt(MakeGrid(49, 0).Datum(), MakeGrid(49, 0).AsNumbers()), "");
    EXPECT_EQ(CrsAsWkt(MakeDatum(1), GridNumbers{}), "");
    EXPECT_EQ(CrsAsWkt(QuorvantDatum({std::nan(""), 0, 0, 0, 0, 0, 0, 0, 0}), std::nullopt), "");
    EXPECT_EQ(CrsAsWkt(QuorvantDatum({0, 0, 0, 0, 0, 0, 0, 0, 0}), std::nullopt), "");
    GridNumbers numbers = MakeGrid(3, 0).AsNumbers();
    numbers.values[4] = HUGE_VAL;
    EXPECT_EQ(CrsAsWkt(MakeDatum(3), numbers), "");
}
