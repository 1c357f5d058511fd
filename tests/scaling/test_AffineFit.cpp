// The affine map that fits points best, compared with another solver of least squares.

#include "base/ComponentError.h"
#include "component/PointFit.h"
#include "component/scaling/Scaling.h"
#include "tests/support/RunProgram.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>

namespace {

using Points = std::vector<MeasuredPoint>;

/// Sheets of a known affine map, each coordinate with a noise of its own, as another program makes them, and
/// what the least squares of that program's own solver put at three pixels.
constexpr const char* Solver = R"(
import json, numpy
random = numpy.random.default_rng(7)
sheets = []
for count, spread, affine, noise in (
        (4, (300, 200), ((2, 0.1, 500000), (0.05, -2, 6100000)), 3.0),
        (5, (12000, 9000), ((0.4, 0, 3500000.125), (0, -0.4, 5800000)), 0.5),
        (40, (12000, 9000), ((0.35, 0.35, -2000000), (0.35, -0.35, 1e7)), 2.0),
        (25, (8000, 5), ((1, 2, 0), (2, -1, 0)), 0.01),
        (1000, (30000, 30000), ((2e-5, 1e-7, 9), (-1e-7, -1.3e-5, 48)), 1e-4)):
    pixels = random.uniform(0, spread, (count, 2))
    world = numpy.c_[pixels, numpy.ones(count)] @ numpy.array(affine).T + random.normal(0, noise, (count, 2))
    middle, place = pixels.mean(0), world.mean(0)
    factors = numpy.linalg.lstsq(numpy.c_[pixels - middle, numpy.ones(count)], world - place, rcond=None)[0]
    at = numpy.array([(0, 0), spread, (-spread[0], spread[1])], dtype=float)
    fitted = numpy.c_[at - middle, numpy.ones(3)] @ factors + place
    sheets.append({'points': numpy.c_[world, pixels].tolist(), 'at': at.tolist(), 'fitted': fitted.tolist()})
print(json.dumps(sheets))
)";

Points PointsOf(const nlohmann::json& rows) {
    Points points;
    for (const auto& row : rows)
        points.push_back({row[0], row[1], row[2], row[3], {}});
    return points;
}

std::unique_ptr<Scaling> Fitted(const Points& points) {
    return MakeLinearScaling(FitAffine(points));
}

ErrorNumber FaultOf(const Points& points, const char* sentence) {
    try {
        FitAffine(points);
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Description(), sentence);
        return error.Number();
    }
    return ErrorNumber::Failed;
}

Points Corners() {
    return {{500000, 6000000, 0, 0, {}},
            {500600, 6000000, 300, 0, {}},
            {500000, 5999600, 0, 200, {}},
            {500600, 5999600, 300, 200, {}}};
}

} // namespace

TEST(AffineFit, IsWhatAnotherSolverFinds) {
    const ProgramResult solved = RunProgram({"/usr/bin/python3", "-c", Solver});
    ASSERT_EQ(solved.status, 0) << solved.err;
    const auto sheets = nlohmann::json::parse(solved.out);
    ASSERT_EQ(sheets.size(), 5U);
    for (const auto& sheet : sheets) {
        const auto scaling = Fitted(PointsOf(sheet["points"]));
        for (std::size_t i = 0; i < 3; ++i) {
            const WorldPosition world = scaling->PixelToWorld({sheet["at"][i][0], sheet["at"][i][1]});
            const double x = sheet["fitted"][i][0], y = sheet["fitted"][i][1];
            EXPECT_NEAR(world.x, x, 1e-13 * std::abs(x) + 1e-8);
            EXPECT_NEAR(world.y, y, 1e-13 * std::abs(y) + 1e-8);
        }
    }
}

TEST(AffineFit, OfThreePointsGoesThroughThem) {
    Points points = Corners();
    points.resize(3);
    const auto scaling = Fitted(points);
    for (const MeasuredPoint& point : points) {
        const WorldPosition world = scaling->PixelToWorld({point.pixelX, point.pixelY});
        EXPECT_NEAR(world.x, point.x, 1e-8);
        EXPECT_NEAR(world.y, point.y, 1e-8);
    }
}

/// A strip of a pixel's width across the sheet: all that says what happens across it are these few pixels.
TEST(AffineFit, OfANarrowStripKeepsItsDigits) {
    Points points;
    for (int i = 0; i <= 2000; ++i) {
        const double px = 2.0 * i + (i % 2) * 0.75, py = 2.0 * i;
        points.push_back({2 * px + 3 * py, 5 * px - 4 * py, px, py, {}});
    }
    const auto scaling = Fitted(points);
    const WorldPosition origin = scaling->PixelToWorld({0, 0}), right = scaling->PixelToWorld({1000, 0});
    EXPECT_NEAR(right.x - origin.x, 2000, 1e-7);
    EXPECT_NEAR(right.y - origin.y, 5000, 1e-7);
}

TEST(AffineFit, IsGivenAtWholePixelsThatLieWellApart) {
    Points points = Corners();
    for (MeasuredPoint& point : points)
        point.pixelX += 0.375;
    const auto [a, b, c] = FitAffine(points);
    EXPECT_EQ(a.pixelX, b.pixelX);
    EXPECT_EQ(b.pixelY, c.pixelY);
    EXPECT_GE(b.pixelY - a.pixelY, 300);
    EXPECT_EQ(c.pixelX - a.pixelX, b.pixelY - a.pixelY);
}

TEST(AffineFit, TakesPointsAtTheEndsOfWhatAMapCanHave) {
    constexpr double low = std::numeric_limits<std::int32_t>::min();
    constexpr double high = std::numeric_limits<std::int32_t>::max();
    const auto scaling =
        Fitted({{0, 0, low, low, {}}, {1, 0, high, low, {}}, {0, 1, low, high, {}}, {1, 1, high, high, {}}});
    EXPECT_NEAR(scaling->PixelToWorld({-0.5, -0.5}).x, 0.5, 1e-12);
    EXPECT_NEAR(scaling->PixelToWorld({-0.5, -0.5}).y, 0.5, 1e-12);
}

TEST(AffineFit, TakesAPointThatWasMeasuredTwice) {
    Points points = Corners();
    points.push_back(points.front());
    EXPECT_NEAR(Fitted(points)->PixelToWorld({150, 100}).x, 500300, 1e-8);
}

TEST(AffineFit, RefusesWhatDeterminesNoMap) {
    Points line, lineOfCoordinates = Corners(), notFinite = Corners(), far = Corners();
    for (int i = 0; i < 5; ++i)
        line.push_back({i * 10.0, i * i * 1.0, i * 100.0, i * 70.0, {}});
    for (MeasuredPoint& point : lineOfCoordinates)
        point.y = point.x / 2;
    notFinite[2].y = std::numeric_limits<double>::quiet_NaN();
    far[3].pixelX = 3e9;
    EXPECT_EQ(FaultOf(line, "The points lie on one line on the map."), ErrorNumber::PointsOnALine);
    EXPECT_EQ(FaultOf(Points(4, Corners()[0]), "The points lie on one line on the map."),
              ErrorNumber::PointsOnALine);
    EXPECT_EQ(FaultOf(lineOfCoordinates, "The coordinates of the points lie on one line."),
              ErrorNumber::PointsOnALine);
    EXPECT_EQ(FaultOf(notFinite, "The Y value of point 3 is not a finite number."),
              ErrorNumber::ValueNotFinite);
    EXPECT_EQ(FaultOf(far, "Point 4 is at no pixel of a map."), ErrorNumber::InvalidArgument);
    EXPECT_EQ(FaultOf({Corners()[0], Corners()[1]}, "A scaling needs at least three points."),
              ErrorNumber::InvalidArgument);
}
