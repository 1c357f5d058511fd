#include "tests/coordinates/CompareGrid.h"
#include "tests/coordinates/StatePlaneCodes.h"

#include <gtest/gtest.h>

#include <map>
#include <span>

namespace {

constexpr int Side = 6;

std::string Epsg(int code) {
    return "EPSG:" + std::to_string(code);
}

struct SingleCase {
    int identifier;
    int geographic; ///< the Greenwich-based CRS of the catalogue's datum
    int projected;
};

constexpr SingleCase SingleCases[]{
    {3, 4277, 27700},  {4, 4299, 29902},  {6, 4124, 3021},   {7, 4149, 21781},  {9, 4123, 2391},
    {10, 4123, 2392},  {11, 4123, 2393},  {12, 4123, 2394},  {14, 4181, 2169},  {17, 4312, 31257},
    {18, 4312, 31258}, {19, 4312, 31259}, {20, 4167, 2193},  {21, 4272, 27200}, {22, 4313, 31370},
    {23, 4275, 27561}, {24, 4275, 27562}, {25, 4275, 27563}, {26, 4275, 27564}, {27, 0, 2154},
    {34, 4289, 28992}, {35, 4265, 3003},  {36, 4265, 3004},  {37, 4273, 27391}, {38, 4273, 27392},
    {39, 4273, 27393}, {40, 4273, 27394}, {41, 4273, 27395}, {42, 4273, 27396}, {43, 4273, 27397},
    {44, 4273, 27398}, {45, 4275, 27572}};

class SingleGrids : public testing::TestWithParam<SingleCase> {};

/// A grid with a typed zone: the codes are base + zone for the zones from first to last, others stand apart.
struct TypedCase {
    int identifier;
    std::string geographic;
    int base;
    int first;
    int last;
    std::map<int, int> others;
    double lonStep;
    double lonBase;
    double k0;
    double falseNorthing;
};

const TypedCase TypedCases[]{
    {1, "EPSG:4326", 32600, 1, 60, {}, 6, -183, 0.9996, 0},
    {2, "EPSG:4326", 32700, 1, 60, {}, 6, -183, 0.9996, 10000000},
    {13, "EPSG:4258", 25800, 28, 37, {}, 6, -183, 0.9996, 0},
    {15, "EPSG:4203", 20300, 49, 56, {}, 6, -183, 0.9996, 10000000},
    {16, "EPSG:4283", 28300, 48, 58, {}, 6, -183, 0.9996, 10000000},
    {28, "EPSG:4230", 23000, 28, 38, {}, 6, -183, 0.9996, 0},
    {29, "EPSG:4314", 31464, 2, 5, {{1, 5680}}, 3, 0, 1, 0},
    {32, "EPSG:4267", 26700, 1, 22, {{59, 3370}, {60, 3371}}, 6, -183, 0.9996, 0},
    {33, "EPSG:4269", 26900, 1, 23, {{59, 3372}, {60, 3373}}, 6, -183, 0.9996, 0},
    {47, "EPSG:4230", 23000, 28, 38, {}, 6, -183, 0.9996, 0},
};

class TypedZoneGrids : public testing::TestWithParam<TypedCase> {};

void PrintTo(const SingleCase& row, std::ostream* stream) {
    *stream << "identifier " << row.identifier;
}
void PrintTo(const TypedCase& row, std::ostream* stream) {
    *stream << "identifier " << row.identifier;
}

/// 0 where EPSG has no code for the zone.
int CodeOf(const TypedCase& row, int zone) {
    if (row.others.contains(zone))
        return row.others.at(zone);
    return zone >= row.first && zone <= row.last ? row.base + zone : 0;
}

/// Zones without a code get the same conversion as PROJJSON, on points about their central meridian.
void CompareZoneWithoutCode(const TypedCase& row, int zone) {
    const double lon0 = row.lonStep * zone + row.lonBase;
    const double strip = row.identifier == 29 ? zone * 1e6 : 0;
    const std::string definition =
        TransverseMercatorJson(row.geographic, lon0, row.k0, 500000 + strip, row.falseNorthing);
    const ReferenceArea area{lon0 - row.lonStep, -80, lon0 + row.lonStep, 84};
    ExpectSameGrid(MakeGrid(static_cast<std::int16_t>(row.identifier), zone),
                   ReferenceGrid(row.geographic, definition), area.Points(Side));
}

void CompareStatePlane(std::int16_t identifier, std::span<const StatePlaneCode> codes) {
    for (const StatePlaneCode& code : codes) {
        SCOPED_TRACE("zone " + std::to_string(code.zone));
        const ReferenceGrid reference("", Epsg(code.crs));
        ExpectSameGrid(MakeGrid(identifier, code.zone), reference, reference.Area().Points(Side));
    }
}

} // namespace

TEST_P(SingleGrids, GiveTheNumbersOfTheirEpsgCode) {
    const SingleCase& row = GetParam();
    const ReferenceGrid reference(row.geographic == 0 ? "" : Epsg(row.geographic), Epsg(row.projected));
    ExpectSameGrid(MakeGrid(static_cast<std::int16_t>(row.identifier), 0), reference,
                   reference.Area().Points(Side));
}

INSTANTIATE_TEST_SUITE_P(Catalogue, SingleGrids, testing::ValuesIn(SingleCases), [](const auto& row) {
    return std::to_string(row.param.identifier) + "_Epsg" + std::to_string(row.param.projected);
});

TEST_P(TypedZoneGrids, GiveTheNumbersOfPROJInEveryZone) {
    const TypedCase& row = GetParam();
    for (int zone = 1; zone <= 60; ++zone) {
        SCOPED_TRACE("zone " + std::to_string(zone));
        const int code = CodeOf(row, zone);
        if (code == 0) {
            CompareZoneWithoutCode(row, zone);
            continue;
        }
        const ReferenceGrid reference(row.geographic, Epsg(code));
        ExpectSameGrid(MakeGrid(static_cast<std::int16_t>(row.identifier), zone), reference,
                       reference.Area().Points(Side));
    }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, TypedZoneGrids, testing::ValuesIn(TypedCases),
                         [](const auto& row) { return std::to_string(row.param.identifier); });

TEST(StatePlaneGrids, GiveTheNumbersOfTheirEpsgCodesOnNad27) {
    CompareStatePlane(30, StatePlaneCodesNad27);
}

TEST(StatePlaneGrids, GiveTheNumbersOfTheirEpsgCodesOnNad83) {
    CompareStatePlane(31, StatePlaneCodesNad83);
}
