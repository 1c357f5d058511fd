#include "coordinates/Projection.h"

#include "tests/coordinates/ErrorOf.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>

namespace {

constexpr double SurveyFoot = 1200.0 / 3937.0;

double Dms(int degrees, int minutes, double seconds) {
    return degrees + minutes / 60.0 + seconds / 3600;
}

GridProjection ProjectionOf(int identifier, int zone = 0) {
    const QuorvantGrid grid = MakeGrid(static_cast<std::int16_t>(identifier), zone);
    return {grid.AsNumbers(), grid.Datum()};
}

void ExpectPlane(const GridProjection& projection, const LonLat& position, const EastNorth& expected,
                 double tolerance) {
    const EastNorth plane = projection.Forward(position);
    EXPECT_NEAR(plane.easting, expected.easting, tolerance);
    EXPECT_NEAR(plane.northing, expected.northing, tolerance);
    const LonLat back = projection.Inverse(plane);
    EXPECT_NEAR(back.longitude, position.longitude, 1e-9);
    EXPECT_NEAR(back.latitude, position.latitude, 1e-9);
}

ErrorNumber ErrorOfNumbers(const GridNumbers& numbers, const QuorvantDatum& datum = {}) {
    return ErrorOf([&] { GridProjection projection(numbers, datum); });
}

} // namespace

// Published worked examples.

TEST(TransverseMercator, GivesTheExampleOfTheBritishGrid) {
    ExpectPlane(ProjectionOf(3), {Dms(1, 43, 4.5177), Dms(52, 39, 27.2531)}, {651409.903, 313177.270}, 0.001);
}

TEST(ObliqueStereographic, GivesTheExampleOfTheDutchGrid) {
    ExpectPlane(ProjectionOf(34), {6, 53}, {196105.283, 557057.739}, 0.001);
}

TEST(NewZealandMapGrid, GivesItsExampleAsFarAsItsRoundedInputAllows) {
    ExpectPlane(ProjectionOf(21), {172.739194, -34.444066}, {2487100.638, 6751049.719}, 0.06);
}

TEST(LambertConformalConic, GivesTheExampleOfTexas) {
    ExpectPlane(ProjectionOf(30, 4204), {-96, 28.5}, {2963503.91 * SurveyFoot, 254759.80 * SurveyFoot},
                0.002);
}

TEST(LambertConformalConic, GivesTheExampleOfMichiganOnItsEnlargedEllipsoid) {
    ExpectPlane(ProjectionOf(30, 2112), {-Dms(83, 10, 0), Dms(43, 45, 0)},
                {2308335.75 * SurveyFoot, 160210.48 * SurveyFoot}, 0.002);
}

TEST(SwissObliqueMercator, GivesTheExampleOfTheSwissGrid) {
    ExpectPlane(ProjectionOf(7), {Dms(8, 29, 11.11127154), Dms(47, 3, 28.95659233)}, {679520.05, 212273.44},
                0.005);
}

// Where a grid is not defined.

TEST(GridProjection, RefusesPositionsThatAreNotOnEarth) {
    for (const int identifier : {3, 7, 21, 22, 34, 48}) {
        const GridProjection projection = ProjectionOf(identifier);
        for (const LonLat& position :
             {LonLat{0, 90.5}, LonLat{0, -90.5}, LonLat{-361, 0}, LonLat{std::nan(""), 50},
              LonLat{5, std::nan("")}, LonLat{HUGE_VAL, 50}, LonLat{5, -HUGE_VAL}})
            EXPECT_EQ(ErrorOf([&] { projection.Forward(position); }), ErrorNumber::OutsideArea) << identifier;
    }
}

TEST(GridProjection, RefusesEastingsAndNorthingsThatLeadNowhere) {
    for (const int identifier : {3, 7, 21, 22, 34, 48, 49}) {
        const GridProjection projection = ProjectionOf(identifier);
        for (const EastNorth& position : {EastNorth{std::nan(""), 0}, EastNorth{0, HUGE_VAL},
                                          EastNorth{1e300, 1e300}, EastNorth{-HUGE_VAL, 0}})
            EXPECT_EQ(ErrorOf([&] { projection.Inverse(position); }), ErrorNumber::OutsideArea) << identifier;
    }
}

TEST(GridProjection, RefusesPlacesWhereTheFormulaIsNotDefined) {
    const auto forward = [](int identifier, const LonLat& position) {
        return ErrorOf([&] { ProjectionOf(identifier).Forward(position); });
    };
    EXPECT_EQ(forward(3, {88, 0}), ErrorNumber::OutsideArea);   // a quarter of the equator from the axis
    EXPECT_EQ(forward(22, {4, -90}), ErrorNumber::OutsideArea); // the pole that a cone does not show
    EXPECT_EQ(forward(21, {0, 51}), ErrorNumber::OutsideArea);  // the series of New Zealand in London
    EXPECT_EQ(forward(34, {-174.612361, -52.156161}), ErrorNumber::OutsideArea); // opposite the centre
    EXPECT_EQ(ErrorOf([] { ProjectionOf(3).Inverse({1e9, 0}); }), ErrorNumber::OutsideArea);
    EXPECT_EQ(ErrorOf([] { ProjectionOf(21).Inverse({-2e7, 2e7}); }), ErrorNumber::OutsideArea);
}

TEST(GridProjection, TakesALongitudeFromTheOtherSideOfTheAntimeridian) {
    const GridProjection utm60 = ProjectionOf(1, 60);
    EXPECT_NEAR(utm60.Forward({-179.5, 10}).easting, utm60.Forward({180.5, 10}).easting, 1e-6);
    EXPECT_NEAR(utm60.Inverse(utm60.Forward({180.5, 10})).longitude, -179.5, 1e-9);
}

TEST(GridProjection, AllowsNegativeEastings) {
    EXPECT_LT(ProjectionOf(37).Forward({5, 60}).easting, 0);
    EXPECT_NEAR(ProjectionOf(37).Inverse({-50000, 200000}).longitude, 5.15, 0.02);
}

// Numbers from a file that nobody vouches for.

TEST(GridProjection, RefusesNumbersThatDescribeNoProjection) {
    const GridNumbers good = MakeGrid(3, 0).AsNumbers();
    GridNumbers numbers = good;
    for (const std::int32_t method : {-1, 0, 7, 2147483647}) {
        numbers.method = method;
        EXPECT_EQ(ErrorOfNumbers(numbers), ErrorNumber::UnknownGrid) << method;
    }
    numbers = good;
    numbers.values[2] = 0; // no scale
    EXPECT_EQ(ErrorOfNumbers(numbers), ErrorNumber::UnknownGrid);
    numbers = good;
    numbers.values[0] = 91; // no latitude
    EXPECT_EQ(ErrorOfNumbers(numbers), ErrorNumber::UnknownGrid);
    numbers = MakeGrid(22, 0).AsNumbers();
    numbers.values[6] = -numbers.values[5]; // a cone without an apex
    EXPECT_EQ(ErrorOfNumbers(numbers), ErrorNumber::UnknownGrid);
    numbers = MakeGrid(21, 0).AsNumbers();
    numbers.values[3] += 1; // the New Zealand series have one origin
    EXPECT_EQ(ErrorOfNumbers(numbers), ErrorNumber::UnknownGrid);
}

TEST(GridProjection, RefusesNumbersThatAreNotFinite) {
    for (std::size_t i = 0; i < 7; ++i) {
        GridNumbers numbers = MakeGrid(22, 0).AsNumbers();
        numbers.values.at(i) = std::nan("");
        EXPECT_EQ(ErrorOfNumbers(numbers), ErrorNumber::ValueNotFinite) << i;
        numbers.values.at(i) = HUGE_VAL;
        EXPECT_EQ(ErrorOfNumbers(numbers), ErrorNumber::ValueNotFinite) << i;
    }
}

TEST(GridProjection, RefusesADatumThatIsNone) {
    const GridNumbers numbers = MakeGrid(3, 0).AsNumbers();
    EXPECT_EQ(ErrorOfNumbers(numbers, QuorvantDatum({0, 0, 0, 0, 0, 0, 0, 0, 0})), ErrorNumber::UnknownDatum);
    EXPECT_EQ(ErrorOfNumbers(numbers, QuorvantDatum({6378137, 1.5, 0, 0, 0, 0, 0, 0, 0})),
              ErrorNumber::UnknownDatum);
    EXPECT_EQ(ErrorOfNumbers(numbers, QuorvantDatum({std::nan(""), 0, 0, 0, 0, 0, 0, 0, 0})),
              ErrorNumber::ValueNotFinite);
}

TEST(GridProjection, WorksOnASphere) {
    const GridProjection projection(MakeGrid(1, 32).AsNumbers(),
                                    QuorvantDatum({6371000, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_NEAR(projection.Forward({9, 45}).northing, 0.9996 * 6371000 * std::atan(1.0), 0.001);
}

TEST(GridProjection, MayRunInManyThreadsWithAnObjectEach) {
    const EastNorth expected = ProjectionOf(34).Forward({6, 53});
    std::array<int, 4> wrong{};
    std::vector<std::thread> threads;
    for (int& count : wrong) {
        threads.emplace_back([&count, &expected] {
            const GridProjection projection = ProjectionOf(34);
            for (int i = 0; i < 2000; ++i)
                count += projection.Forward({6, 53}).easting != expected.easting;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, (std::array<int, 4>{}));
}
