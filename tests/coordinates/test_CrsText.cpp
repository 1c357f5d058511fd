#include "coordinates/CrsText.h"

#include "coordinates/Projection.h"
#include "coordinates/SystemNames.h"
#include "tests/coordinates/ReferenceProj.h"
#include "tests/coordinates/StatePlaneCodes.h"
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

std::string WktOf(const QuorvantDatum& datum, const std::optional<GridNumbers>& grid,
                  std::int32_t gridIdentifier = 0) {
    return DescribeCrs(datum, grid, gridIdentifier).wkt;
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
        const std::string wkt = WktOf(grid.Datum(), grid.AsNumbers());
        EXPECT_NE(wkt, "") << row.identifier;
        cases.push_back({{"wkt", wkt}, {"points", PointsOf(grid, row.area)}});
        const std::string named = WktOf(grid.Datum(), grid.AsNumbers(), row.identifier);
        cases.push_back({{"wkt", named}, {"points", PointsOf(grid, row.area)}});
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
        cases.push_back({{"wkt", WktOf(MakeDatum(identifier), std::nullopt)}, {"points", points}});
    }
    ExpectOthersAgree(cases, 1e-7); // degrees, 1 cm
}

TEST(CrsText, IsBoundToWgs84ExactlyWhereThereIsAShift) {
    for (std::int16_t identifier = 1; identifier <= 27; ++identifier) {
        const bool shifted = identifier != 1 && FittingDatums(MakeDatum(identifier)).size() == 1;
        const std::string wkt = WktOf(MakeDatum(identifier), std::nullopt);
        EXPECT_EQ(wkt.starts_with("BOUNDCRS"), shifted) << wkt;
        EXPECT_EQ(wkt.starts_with("GEOGCRS"), !shifted) << wkt;
    }
    EXPECT_THAT(WktOf(MakeDatum(1), MakeGrid(1, 32).AsNumbers()), HasSubstr("World Geodetic System 1984"));
}

TEST(CrsText, IsEmptyWhereThereIsNoSuchText) {
    EXPECT_EQ(WktOf(MakeGrid(48, 0).Datum(), MakeGrid(48, 0).AsNumbers()), "");
    EXPECT_EQ(WktOf(MakeGrid(49, 0).Datum(), MakeGrid(49, 0).AsNumbers()), "");
    EXPECT_EQ(WktOf(MakeDatum(1), GridNumbers{}), "");
    EXPECT_EQ(WktOf(QuorvantDatum({std::nan(""), 0, 0, 0, 0, 0, 0, 0, 0}), std::nullopt), "");
    EXPECT_EQ(WktOf(QuorvantDatum({0, 0, 0, 0, 0, 0, 0, 0, 0}), std::nullopt), "");
    GridNumbers numbers = MakeGrid(3, 0).AsNumbers();
    numbers.values[4] = HUGE_VAL;
    EXPECT_EQ(WktOf(MakeDatum(3), numbers), "");
}

// Names and codes. ---------------------------------------------------------------------------------------

namespace {

/// A grid with the code that it must have.
struct CodeCase {
    std::int16_t identifier;
    std::int32_t zone;
    int epsg;
};

std::vector<CodeCase> CodeCases() {
    std::vector<CodeCase> cases{
        {3, 0, 27700},  {4, 0, 29902},  {6, 0, 3021},   {7, 0, 21781},  {9, 0, 2391},   {10, 0, 2392},
        {11, 0, 2393},  {12, 0, 2394},  {14, 0, 2169},  {17, 0, 31257}, {18, 0, 31258}, {19, 0, 31259},
        {20, 0, 2193},  {21, 0, 27200}, {22, 0, 31370}, {23, 0, 27561}, {24, 0, 27562}, {25, 0, 27563},
        {26, 0, 27564}, {27, 0, 2154},  {34, 0, 28992}, {35, 0, 3003},  {36, 0, 3004},  {37, 0, 27391},
        {38, 0, 27392}, {39, 0, 27393}, {40, 0, 27394}, {41, 0, 27395}, {42, 0, 27396}, {43, 0, 27397},
        {44, 0, 27398}, {45, 0, 27572}, {29, 1, 5680},  {32, 59, 3370}, {32, 60, 3371}, {33, 59, 3372},
        {33, 60, 3373}};
    struct Zones {
        std::int16_t identifier;
        int first;
        int last;
        int base;
    };
    for (const Zones& zones : {Zones{1, 1, 60, 32600},
                               {2, 1, 60, 32700},
                               {13, 28, 37, 25800},
                               {15, 49, 56, 20300},
                               {16, 48, 58, 28300},
                               {28, 28, 38, 23000},
                               {29, 2, 5, 31464},
                               {32, 1, 22, 26700},
                               {33, 1, 23, 26900},
                               {47, 28, 38, 23000}})
        for (const int zone : {zones.first, (zones.first + zones.last) / 2, zones.last})
            cases.push_back({zones.identifier, zone, zones.base + zone});
    for (const StatePlaneCode& code : StatePlaneCodesNad83)
        cases.push_back({31, code.zone, code.crs});
    return cases;
}

/// Somewhat beside the grid's origin, where its formula is good.
json PointNear(const QuorvantGrid& grid) {
    const auto& values = grid.AsNumbers().values;
    const double latitude = values[0] == 0 ? 45 : values[0] == 90 ? 50.5 : values[0] + 0.5;
    return {values[1] + 0.5, latitude};
}

void ExpectSameAsRegistry(const json& cases) {
    const auto result =
        RunProgram({"/usr/bin/python3", SOURCE_DIR "/tests/coordinates/same_crs.py"}, cases.dump());
    ASSERT_EQ(result.status, 0) << result.err;
    const json answers = json::parse(result.out);
    ASSERT_EQ(answers.size(), cases.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(cases[i].at("wkt"));
        EXPECT_EQ(answers[i]["name"], answers[i]["expectedName"]);
        EXPECT_EQ(answers[i]["code"], cases[i]["epsg"]);
        EXPECT_EQ(answers[i]["axes"], answers[i]["expectedAxes"]);
        EXPECT_LE(answers[i]["difference"].get<double>(), 0.001);
    }
}

} // namespace

TEST(CrsText, HasTheNameTheCodeAndTheAxesOfTheRegistry) {
    json cases = json::array();
    for (const CodeCase& row : CodeCases()) {
        const QuorvantGrid grid = MakeGrid(row.identifier, row.zone);
        const CrsText text = DescribeCrs(grid.Datum(), grid.AsNumbers(), row.identifier);
        EXPECT_EQ(text.epsg, row.epsg) << row.identifier << " " << row.zone;
        cases.push_back({{"wkt", text.wkt}, {"epsg", row.epsg}, {"point", PointNear(grid)}});
    }
    for (std::int16_t identifier = 1; identifier <= 27; ++identifier) {
        const CrsText text = DescribeCrs(MakeDatum(identifier), std::nullopt);
        if (FittingDatums(MakeDatum(identifier)).size() > 1)
            continue;
        EXPECT_TRUE(text.northFirst);
        cases.push_back({{"wkt", text.wkt}, {"epsg", text.epsg}, {"point", {10, 50}}});
    }
    ExpectSameAsRegistry(cases);
}

TEST(CrsText, HasACodeOnlyForTheNumbersOfOne) {
    const auto epsg = [](const QuorvantGrid& grid, std::int32_t identifier) {
        return DescribeCrs(grid.Datum(), grid.AsNumbers(), identifier).epsg;
    };
    EXPECT_EQ(epsg(MakeGrid(13, 32), 13), 25832);
    EXPECT_EQ(epsg(MakeGrid(13, 5), 13), 0) << "the registry has no such zone";
    EXPECT_EQ(epsg(MakeGrid(30, 4204), 30), 0) << "the registry has it in feet";
    EXPECT_EQ(epsg(MakeGrid(28, 32), 0), 23032) << "a custom grid with these numbers";
    EXPECT_EQ(epsg(MakeGrid(13, 15), 0), 0) << "of ETRS89 or of NAD83";
    EXPECT_EQ(epsg(MakeGrid(28, 32), 1), 0) << "what was said is not what the numbers are";
    EXPECT_EQ(DescribeCrs(MakeDatum(19), std::nullopt).epsg, 0);
    EXPECT_EQ(DescribeCrs(MakeDatum(17), std::nullopt).epsg, 4230);
}

TEST(CrsText, AlwaysHasAName) {
    const auto name = [](const QuorvantGrid& grid, std::int32_t identifier) {
        const CrsText text = DescribeCrs(grid.Datum(), grid.AsNumbers(), identifier);
        EXPECT_THAT(text.wkt, HasSubstr("\"" + text.name + "\""));
        EXPECT_THAT(text.wkt, Not(HasSubstr("\"unknown")));
        return text.name;
    };
    EXPECT_EQ(name(MakeGrid(28, 32), 28), "ED50 / UTM zone 32N");
    EXPECT_EQ(name(MakeGrid(13, 5), 13), "UTM (etrs89) zone 5");
    EXPECT_EQ(name(MakeGrid(30, 4204), 30), "State Plane (nad27) zone 4204");
    EXPECT_EQ(name(MakeGrid(30, 5103), 30), "State Plane (nad27) zone 5103");
    EXPECT_EQ(name(MakeGrid(33, 15), 0), "UTM (etrs89) zone 15 or UTM (nad83) zone 15");
    GridNumbers own = MakeGrid(28, 32).AsNumbers();
    own.values[1] = 9.5;
    EXPECT_EQ(name(QuorvantGrid(own, MakeDatum(17)), 0), "Custom grid");
    auto numbers = MakeDatum(17).AsNumbers();
    numbers[2] = -88;
    EXPECT_EQ(name(QuorvantGrid(own, QuorvantDatum(numbers)), 0), "Custom grid");
    EXPECT_EQ(DescribeCrs(QuorvantDatum(numbers), std::nullopt).name, "Custom datum");
    EXPECT_EQ(DescribeCrs(MakeDatum(19), std::nullopt).name, "ETRS89, GDA94, NZGD2000 or NAD83");
}
