// What points are off a scaling, in pixels and in metres; on an ellipsoid compared with its geodesics.

#include "base/ComponentError.h"
#include "component/PointFit.h"

#include <geodesic.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

Georeference InMetres() {
    Georeference georeference;
    georeference.grid = GridNumbers{1, 32, {0, 9, 0.9996, 500000, 0, 0, 0}};
    georeference.kind = ScalingKind::Linear;
    georeference.points = {{500000, 6000000, 0, 0}, {500400, 6000000, 100, 0}, {500000, 5999700, 0, 100}};
    return georeference;
}

} // namespace

TEST(Residuals, AreInPixelsWhereThePointShouldLie) {
    const std::vector<MeasuredPoint> points{{500404, 5999994, 100, 0, {}}, {500000, 6000000, 0, 0, {}}};
    const std::vector<Residual> residuals = ResidualsOf(InMetres(), points);
    ASSERT_EQ(residuals.size(), 2U);
    EXPECT_NEAR(residuals[0].right, 1, 1e-9);
    EXPECT_NEAR(residuals[0].down, 2, 1e-9);
    EXPECT_NEAR(residuals[0].pixels, std::sqrt(5.0), 1e-9);
    EXPECT_NEAR(residuals[0].metres, std::sqrt(16.0 + 36.0), 1e-9);
    EXPECT_NEAR(residuals[1].pixels, 0, 1e-9);
    EXPECT_NEAR(residuals[1].metres, 0, 1e-9);
}

TEST(Residuals, AreInMetresOnTheEllipsoidForMapsInDegrees) {
    Georeference georeference;
    const QuorvantDatum bessel({6377397.155, 0.006674372231802145, 500, 0, 0, 0, 0, 0, 0});
    georeference.datum = bessel;
    georeference.kind = ScalingKind::Linear;
    georeference.points = {{10, 60, 0, 0}, {11, 60, 1000, 0}, {10, 59, 0, 1000}};
    geod_geodesic ellipsoid{};
    geod_init(&ellipsoid, bessel.SemiMajorAxis(), 1 - std::sqrt(1 - bessel.e2()));
    for (const WorldPosition off : {WorldPosition{0.003, 0}, {0, 0.003}, {-0.002, 0.001}}) {
        const MeasuredPoint point{10.5 + off.x, 59.5 + off.y, 500, 500, {}};
        double metres = 0;
        geod_inverse(&ellipsoid, point.y, point.x, 59.5, 10.5, &metres, nullptr, nullptr);
        const Residual residual = ResidualsOf(georeference, std::vector{point}).front();
        EXPECT_NEAR(residual.metres, metres, 1e-4);
        EXPECT_NEAR(residual.pixels, 1000 * std::hypot(off.x, off.y), 1e-6);
    }
}

TEST(Residuals, AreOfSheetsWithFourCornersToo) {
    Georeference georeference;
    georeference.kind = ScalingKind::Polar;
    georeference.points = {{10, 60, 10, 0}, {10, 59, 0, 100}, {11, 60, 90, 0}, {11, 59, 100, 100}};
    const std::vector<MeasuredPoint> corner{{11, 59, 103, 96, {}}};
    EXPECT_NEAR(ResidualsOf(georeference, corner).front().pixels, 5, 1e-9);
}

TEST(Residuals, NeedAScaling) {
    try {
        ResidualsOf({}, std::vector<MeasuredPoint>(1));
        ADD_FAILURE() << "there were some";
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::MapNotScaled);
    }
}
