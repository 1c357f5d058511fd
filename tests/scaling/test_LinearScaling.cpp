#include "base/ComponentError.h"
#include "component/scaling/Scaling.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using testing::HasSubstr;

namespace {

using PointTriple = std::array<ReferencePoint, 3>;

ErrorNumber FaultOf(const PointTriple& points, std::string& sentence) {
    try {
        MakeLinearScaling(points);
    } catch (const ComponentError& error) {
        sentence = error.Description();
        return error.Number();
    }
    return ErrorNumber::Failed;
}

void ExpectLineFault(const PointTriple& points, const char* sentence) {
    std::string said;
    EXPECT_EQ(FaultOf(points, said), ErrorNumber::PointsOnALine) << said;
    EXPECT_THAT(said, HasSubstr(sentence));
}

/// Points of a known affine map, for the sheets below.
PointTriple PointsOf(const Affine& affine, std::array<PixelPosition, 3> pixels) {
    PointTriple points;
    for (std::size_t i = 0; i < 3; ++i)
        points[i] = {affine.a * pixels[i].x + affine.b * pixels[i].y + affine.c,
                     affine.d * pixels[i].x + affine.e * pixels[i].y + affine.f,
                     static_cast<std::int32_t>(pixels[i].x), static_cast<std::int32_t>(pixels[i].y)};
    return points;
}

struct AffineSheet {
    const char* name;
    Affine affine;
};

const AffineSheet AffineSheets[] = {
    {"north up in metres", {2, 0, 500000, 0, -2, 6000000}},
    {"turned by 30 degrees", {1.7320508, 1, 3400000, 1, -1.7320508, 5800000}},
    {"turned by a quarter", {0, 2.5, 600000, 2.5, 0, 6100000}},
    {"mirrored", {-2, 0, 600000, 0, -2, 6000000}},
    {"skewed", {2, 0.7, 500000, -0.3, -1.5, 6000000}},
    {"in degrees", {1e-5, 2e-7, 9.5, -1e-7, -7e-6, 56.25}},
};

} // namespace

TEST(LinearScaling, GivesBackItsOwnPointsToABillionthOfTheSpan) {
    for (const AffineSheet& sheet : AffineSheets) {
        const PointTriple points = PointsOf(sheet.affine, {{{12, 40}, {59000, 801}, {23, 59990}}});
        const auto scaling = MakeLinearScaling(points);
        for (const ReferencePoint& point : points) {
            const WorldPosition world =
                scaling->PixelToWorld({static_cast<double>(point.pixelX), static_cast<double>(point.pixelY)});
            const double span = std::hypot(points[1].x - points[0].x, points[1].y - points[0].y);
            EXPECT_NEAR(world.x, point.x, 1e-9 * span) << sheet.name;
            EXPECT_NEAR(world.y, point.y, 1e-9 * span) << sheet.name;
        }
    }
}

TEST(LinearScaling, GoesToCoordinatesAndBackWithinAMillionthOfAPixel) {
    for (const AffineSheet& sheet : AffineSheets) {
        const auto scaling =
            MakeLinearScaling(PointsOf(sheet.affine, {{{12, 40}, {59000, 801}, {23, 59990}}}));
        for (double x = 0; x <= 60000; x += 2500.5)
            for (double y = 0; y <= 60000; y += 2500.25) {
                const PixelPosition back = scaling->WorldToPixel(scaling->PixelToWorld({x, y}));
                EXPECT_NEAR(back.x, x, 1e-6) << sheet.name;
                EXPECT_NEAR(back.y, y, 1e-6) << sheet.name;
            }
    }
}

TEST(LinearScaling, FindsTheSixNumbersAgain) {
    for (const AffineSheet& sheet : AffineSheets) {
        const Affine found = AffineOf(PointsOf(sheet.affine, {{{0, 0}, {10000, 0}, {0, 10000}}}));
        EXPECT_NEAR(found.a, sheet.affine.a, 1e-12 * 60000) << sheet.name;
        EXPECT_NEAR(found.b, sheet.affine.b, 1e-12 * 60000) << sheet.name;
        EXPECT_NEAR(found.c, sheet.affine.c, 1e-8) << sheet.name;
        EXPECT_NEAR(found.d, sheet.affine.d, 1e-12 * 60000) << sheet.name;
        EXPECT_NEAR(found.e, sheet.affine.e, 1e-12 * 60000) << sheet.name;
        EXPECT_NEAR(found.f, sheet.affine.f, 1e-8) << sheet.name;
    }
}

TEST(LinearScaling, RefusesPointsThatSpanNoTriangleAndSaysWhich) {
    ExpectLineFault({{{0, 0, 5, 5}, {1, 0, 5, 5}, {0, 1, 90, 5}}},
                    "Points 1 and 2 are the same place on the map.");
    ExpectLineFault({{{0, 0, 5, 5}, {1, 0, 90, 5}, {0, 1, 5, 5}}},
                    "Points 1 and 3 are the same place on the map.");
    ExpectLineFault({{{0, 0, 0, 0}, {3, 4, 90, 0}, {3, 4, 0, 90}}},
                    "Points 2 and 3 have the same coordinates.");
    ExpectLineFault({{{0, 0, 0, 0}, {1, 0, 100, 100}, {0, 1, 200, 200}}},
                    "The three points lie on one line on the map.");
    ExpectLineFault({{{0, 0, 0, 0}, {1, 0, 30000, 1}, {0, 1, 60000, 0}}},
                    "The three points lie on one line on the map.");
    ExpectLineFault({{{500000, 6e6, 0, 0}, {501000, 6.001e6, 90, 0}, {502000, 6.002e6, 0, 90}}},
                    "The coordinates of the three points lie on one line.");
    ExpectLineFault({{{0, 0, 0, 0}, {1000, 1e-7, 90, 0}, {2000, 0, 0, 90}}},
                    "The coordinates of the three points lie on one line.");
}

TEST(LinearScaling, AcceptsALongNarrowSheet) {
    EXPECT_NO_THROW(MakeLinearScaling(PointTriple{{{0, 0, 0, 0}, {60000, 0, 60000, 0}, {0, -500, 0, 500}}}));
}

TEST(LinearScaling, RefusesValuesThatAreNoNumbersAndSaysWhich) {
    const double nan = std::numeric_limits<double>::quiet_NaN(),
                 inf = std::numeric_limits<double>::infinity();
    std::string said;
    EXPECT_EQ(FaultOf({{{0, 0, 0, 0}, {1, nan, 9, 0}, {0, 1, 0, 9}}}, said), ErrorNumber::ValueNotFinite);
    EXPECT_EQ(said, "The Y value of point 2 is not a finite number.");
    EXPECT_EQ(FaultOf({{{0, 0, 0, 0}, {1, 0, 9, 0}, {-inf, 1, 0, 9}}}, said), ErrorNumber::ValueNotFinite);
    EXPECT_EQ(said, "The X value of point 3 is not a finite number.");
    EXPECT_EQ(FaultOf({{{1e308, 0, 0, 0}, {-1e308, 0, 9, 0}, {0, 1, 0, 9}}}, said),
              ErrorNumber::ValueNotFinite);
    EXPECT_EQ(said, "The X value of point 1 is too large.");
}

TEST(LinearScaling, TakesPixelsFromEndToEndOfTheirRange) {
    constexpr std::int32_t low = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t high = std::numeric_limits<std::int32_t>::max();
    const auto scaling =
        MakeLinearScaling(PointTriple{{{0, 0, low, low}, {1, 0, high, low}, {0, 1, low, high}}});
    const WorldPosition middle = scaling->PixelToWorld({-0.5, -0.5});
    EXPECT_NEAR(middle.x, 0.5, 1e-12);
    EXPECT_NEAR(middle.y, 0.5, 1e-12);
}

TEST(LinearScaling, HasNoPixelForACoordinateThatIsNone) {
    const auto scaling = MakeLinearScaling(PointTriple{{{0, 0, 0, 0}, {1, 0, 9, 0}, {0, 1, 0, 9}}});
    EXPECT_THROW(scaling->WorldToPixel({std::numeric_limits<double>::infinity(), 0}), ComponentError);
}

TEST(Scaling, OfAGeoreferenceIsTheOneItNames) {
    Georeference georeference;
    EXPECT_EQ(MakeScaling(georeference), nullptr);
    georeference.kind = ScalingKind::Linear;
    georeference.points = {{10, 20, 0, 0}, {11, 20, 100, 0}, {10, 19, 0, 100}};
    EXPECT_NEAR(MakeScaling(georeference)->PixelToWorld({50, 50}).x, 10.5, 1e-12);
    georeference.points.pop_back();
    EXPECT_THROW(MakeScaling(georeference), ComponentError);
    georeference.kind = static_cast<ScalingKind>(9);
    EXPECT_THROW(MakeScaling(georeference), ComponentError);
}
