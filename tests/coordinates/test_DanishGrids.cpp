#include "coordinates/DanishSystem34.h"
#include "coordinates/Projection.h"
#include "tests/coordinates/ErrorOf.h"
#include "tests/coordinates/ReferenceProj.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

const QuorvantGrid System34 = MakeGrid(48, 0);
const QuorvantGrid System45 = MakeGrid(49, 0);

// Areas of land with the sea between; the polynomials were fitted to land.
constexpr ReferenceArea MiddleJutland{8.1, 55.4, 10.9, 57.0};
constexpr ReferenceArea SouthJutlandAndFunen{8.45, 54.85, 10.8, 55.4};
constexpr ReferenceArea NorthJutland{9.9, 57.0, 10.7, 57.7};
constexpr ReferenceArea Zealand{11.15, 54.8, 12.5, 56.1};
constexpr ReferenceArea LollandAndFalster{10.95, 54.6, 12.0, 54.95};
constexpr ReferenceArea Anholt{11.5, 56.69, 11.68, 56.74};
constexpr ReferenceArea Bornholm{14.68, 54.98, 15.17, 55.31};

EastNorth FromEtrs89(const QuorvantGrid& grid, const LonLat& etrs89) {
    return GridProjection(grid.AsNumbers(), grid.Datum()).Forward(DatumShift(grid.Datum()).FromWgs84(etrs89));
}

void ExpectNear(const EastNorth& actual, const EastNorth& expected, double tolerance) {
    EXPECT_NEAR(actual.easting, expected.easting, tolerance);
    EXPECT_NEAR(actual.northing, expected.northing, tolerance);
}

QuorvantGrid InSystem(DanishSystem system) {
    GridNumbers numbers = System34.AsNumbers();
    numbers.zone = static_cast<std::int32_t>(system);
    return {numbers, System34.Datum()};
}

double WorstClosure(const QuorvantGrid& grid, const ReferenceArea& area) {
    const GridProjection projection(grid.AsNumbers(), grid.Datum());
    double worst = 0;
    for (const LonLat& point : area.Points(25))
        worst = std::max(worst, GroundDistance(projection.Inverse(projection.Forward(point)), point));
    return worst;
}

/// The largest distance from the closed formula by which the system was reconstructed later; its axis grows
/// to the east. It was fitted with a translation of its own to WGS84.
double WorstDistanceFrom(const std::string& reconstruction, const QuorvantDatum& fitted,
                         const QuorvantGrid& grid, const ReferenceArea& area) {
    const ReferencePointer formula = ReferenceObject(reconstruction);
    double worst = 0;
    for (const LonLat& point : area.Points(12)) {
        const EastNorth plane = FromEtrs89(grid, point);
        const LonLat own = DatumShift(fitted).FromWgs84(point);
        const PJ_COORD out = proj_trans(
            formula.get(), PJ_FWD, proj_coord(proj_torad(own.longitude), proj_torad(own.latitude), 0, 0));
        worst = std::max(worst, std::hypot(-plane.easting - out.xy.x, plane.northing - out.xy.y));
    }
    return worst;
}

QuorvantDatum Fitted(double x, double y, double z) {
    return QuorvantDatum({6378388, 0.006722670022333, x, y, z, 0, 0, 0, 0});
}

} // namespace

TEST(System34, GivesTheCheckValuesInJutlandAndZealand) {
    ExpectNear(FromEtrs89(System34, {9.5, 57}), {263190.2497, 286078.3847}, 0.001);
    ExpectNear(FromEtrs89(System34, {12.5, 55.7}), {76425.6474, 143042.0038}, 0.001);
    ExpectNear(FromEtrs89(InSystem(DanishSystem::Jutland), {9.5, 57}), {263190.2497, 286078.3847}, 0.001);
    ExpectNear(FromEtrs89(InSystem(DanishSystem::Zealand), {12.5, 55.7}), {76425.6474, 143042.0038}, 0.001);
}

TEST(System45, GivesTheCheckValueOfBornholm) {
    ExpectNear(FromEtrs89(System45, {15, 55}), {42915.0596, 37569.1876}, 0.001);
}

TEST(DanishUtm32, GivesTheCheckValuesOfTheStepInBetween) {
    const GridProjection utm32(MakeGrid(28, 32).AsNumbers(), System34.Datum());
    const DatumShift shift(System34.Datum());
    ExpectNear(utm32.Forward(shift.FromWgs84({9.5, 57})), {530454.9998, 6317704.6255}, 0.001);
    ExpectNear(utm32.Forward(shift.FromWgs84({15, 55})), {883653.4932, 6111473.4226}, 0.001);
}

TEST(System34, GrowsToTheWestAndToTheNorth) {
    const EastNorth here = FromEtrs89(System34, {9.5, 56});
    EXPECT_GT(FromEtrs89(System34, {9.4, 56}).easting, here.easting);
    EXPECT_GT(FromEtrs89(System34, {9.5, 56.1}).northing, here.northing);
}

TEST(DanishGrids, GoThereAndBackWithinAMillimetreOnLand) {
    constexpr double millimetre = 0.001;
    for (const ReferenceArea& area : {MiddleJutland, SouthJutlandAndFunen, NorthJutland})
        EXPECT_LE(WorstClosure(InSystem(DanishSystem::Jutland), area), millimetre) << area.south;
    for (const ReferenceArea& area : {Zealand, LollandAndFalster})
        EXPECT_LE(WorstClosure(InSystem(DanishSystem::Zealand), area), millimetre) << area.south;
    EXPECT_LE(WorstClosure(System45, Bornholm), millimetre);
}

TEST(System34, ReachesAnholtInTheSystemOfZealand) {
    EXPECT_EQ(ChooseSystem34({11.6, 56.7}), DanishSystem::Zealand);
    EXPECT_LE(WorstClosure(System34, Anholt), 0.01);
}

TEST(DanishGrids, StayNearTheirReconstructions) {
    const std::string s34 = "+proj=tmerc +ellps=intl +lat_0=0 +lon_0=10.37 +k_0=1 +x_0=-210327 +y_0=-6034310";
    const std::string s45 =
        "+proj=tmerc +ellps=intl +lat_0=55.11171 +lon_0=14.88927 +k_0=1 +x_0=-50000 +y_0=50000";
    const QuorvantDatum fitted34 = Fitted(-169, -28, -112);
    EXPECT_LE(WorstDistanceFrom(s34, fitted34, InSystem(DanishSystem::Jutland), MiddleJutland), 45);
    EXPECT_LE(WorstDistanceFrom(s34, fitted34, InSystem(DanishSystem::Zealand), Zealand), 45);
    EXPECT_LE(WorstDistanceFrom(s45, Fitted(-172.60, -45.99, -106.58), System45, Bornholm), 5);
}

TEST(System34, DividesJutlandFromZealandByLatitudeBands) {
    const struct {
        double latitude;
        double longitude;
    } bands[]{{54.7, 10.85},  {55.1, 11.02},  {55.45, 10.95}, {55.8, 10.78},  {56.2, 11.10}, {56.7, 11.30},
              {54.95, 11.02}, {55.30, 10.95}, {55.60, 10.78}, {55.95, 11.10}, {56.50, 11.30}};
    for (const auto& band : bands) {
        EXPECT_EQ(ChooseSystem34({band.longitude, band.latitude}), DanishSystem::Jutland) << band.latitude;
        EXPECT_EQ(ChooseSystem34({band.longitude + 1e-9, band.latitude}), DanishSystem::Zealand)
            << band.latitude;
    }
    EXPECT_EQ(ChooseSystem34({13, 56.85}), DanishSystem::Jutland); // no Zealand so far north
    EXPECT_EQ(ChooseSystem34({13.5, 55.5}), DanishSystem::Zealand);
    EXPECT_EQ(ChooseSystem34({13.5001, 55.5}), std::nullopt);
}

TEST(System34, TakesTheSystemOfTheBandForwardAndBack) {
    const GridProjection automatic(System34.AsNumbers(), System34.Datum());
    for (const LonLat& point : ReferenceArea{8.3, 54.7, 12.6, 57.5}.Points(40)) {
        const auto system = ChooseSystem34(point);
        ASSERT_TRUE(system);
        const QuorvantGrid grid = InSystem(*system);
        const GridProjection chosen(grid.AsNumbers(), grid.Datum());
        EastNorth expected;
        if (ErrorOf([&] { expected = chosen.Forward(point); }) != ErrorNumber{})
            continue;
        ExpectNear(automatic.Forward(point), expected, 0);
        // At the line itself both systems have a point for these numbers, up to 45 m apart.
        EXPECT_LE(GroundDistance(automatic.Inverse(expected), point), 45);
    }
}

TEST(System34, RefusesWhatLiesEastOfItsLimitOrFarAway) {
    EXPECT_EQ(ErrorOf([] { FromEtrs89(System34, {15, 55}); }), ErrorNumber::OutsideArea);
    EXPECT_EQ(ErrorOf([] { FromEtrs89(System34, {9.5, 50}); }), ErrorNumber::OutsideArea);
    EXPECT_EQ(ErrorOf([] { FromEtrs89(System34, {0, 56}); }), ErrorNumber::OutsideArea);
    EXPECT_EQ(ErrorOf([] {
                  FromEtrs89(InSystem(DanishSystem::Zealand), {8.2, 56});
              }),
              ErrorNumber::OutsideArea);
    const GridProjection projection(System34.AsNumbers(), System34.Datum());
    for (const EastNorth& plane :
         {EastNorth{600000, 200000}, EastNorth{-300000, 100000}, EastNorth{200000, 900000}})
        EXPECT_EQ(ErrorOf([&] { projection.Inverse(plane); }), ErrorNumber::OutsideArea);
}

TEST(System45, RefusesJutland) {
    EXPECT_EQ(ErrorOf([] { FromEtrs89(System45, {9.5, 56}); }), ErrorNumber::OutsideArea);
    const GridProjection projection(System45.AsNumbers(), System45.Datum());
    EXPECT_EQ(ErrorOf([&] { projection.Inverse({263190, 286078}); }), ErrorNumber::OutsideArea);
}

TEST(DanishGrids, HaveFourZonesAndNoMore) {
    GridNumbers numbers = System34.AsNumbers();
    for (const int zone : {-1, 4, 48}) {
        numbers.zone = zone;
        EXPECT_EQ(ErrorOf([&] { GridProjection projection(numbers, System34.Datum()); }),
                  ErrorNumber::UnknownZone);
    }
}
