#include "base/ComponentError.h"
#include "component/scaling/Scaling.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <proj.h>

#include <cmath>
#include <limits>
#include <memory>
#include <numbers>

using testing::HasSubstr;

namespace {

using FourCorners = std::array<ReferencePoint, 4>;

/// How the sheet of a projection lies on the scanned picture.
struct Placing {
    double turn = 0; ///< degrees
    bool mirrored = false;
};

PixelPosition Place(double x, double y, double scale, const Placing& placing) {
    const double angle = placing.turn * std::numbers::pi / 180;
    const double right = (placing.mirrored ? -x : x) * scale, down = -y * scale;
    return {right * std::cos(angle) - down * std::sin(angle),
            right * std::sin(angle) + down * std::cos(angle)};
}

/// A graticule sheet in the equidistant conic projection of a sphere, whose parallels are arcs at even
/// distances: there the polar scaling is exact, and PROJ tells where every place lies.
class ConicSheet {
public:
    ConicSheet(double west, double east, double south, double north, const Placing& placing)
        : west_(west), east_(east), south_(south), north_(north), placing_(placing) {
        const double low = south + (north - south) / 6, high = north - (north - south) / 6;
        const std::string text = "+proj=eqdc +R=6371000 +lon_0=" + std::to_string((west + east) / 2) +
                                 " +lat_0=" + std::to_string((south + north) / 2) +
                                 " +lat_1=" + std::to_string(low) + " +lat_2=" + std::to_string(high);
        projection_.reset(proj_create(nullptr, text.c_str()));
        const PJ_COORD a = Project(west, north), b = Project(east, south);
        // Far finer than any scan, so that whole pixel numbers hardly cut the corners' places.
        scale_ = 1e9 / std::hypot(a.xy.x - b.xy.x, a.xy.y - b.xy.y);
    }

    PixelPosition PixelAt(double longitude, double latitude) const {
        const PJ_COORD at = Project(longitude, latitude);
        return Place(at.xy.x, at.xy.y, scale_, placing_);
    }

    FourCorners CornerPoints() const {
        return {Corner(west_, north_), Corner(west_, south_), Corner(east_, north_), Corner(east_, south_)};
    }

private:
    struct Destroy {
        void operator()(PJ* projection) const { proj_destroy(projection); }
    };

    PJ_COORD Project(double longitude, double latitude) const {
        return proj_trans(projection_.get(), PJ_FWD,
                          proj_coord(proj_torad(longitude), proj_torad(latitude), 0, 0));
    }

    ReferencePoint Corner(double longitude, double latitude) const {
        const PixelPosition at = PixelAt(longitude, latitude);
        return {longitude, latitude, static_cast<std::int32_t>(std::lround(at.x)),
                static_cast<std::int32_t>(std::lround(at.y))};
    }

    double west_, east_, south_, north_;
    Placing placing_;
    std::unique_ptr<PJ, Destroy> projection_;
    double scale_ = 1;
};

void ExpectAgreementWithProj(double west, double east, double south, double north, const Placing& placing) {
    const ConicSheet sheet(west, east, south, north, placing);
    const auto scaling = MakePolarScaling(sheet.CornerPoints());
    for (int i = 0; i <= 10; ++i)
        for (int k = 0; k <= 10; ++k) {
            const double longitude = west + (east - west) * i / 10,
                         latitude = south + (north - south) * k / 10;
            const PixelPosition pixel = sheet.PixelAt(longitude, latitude);
            const WorldPosition world = scaling->PixelToWorld(pixel);
            EXPECT_NEAR(world.x, longitude, 1e-8 * (east - west));
            EXPECT_NEAR(world.y, latitude, 1e-8 * (north - south));
            const PixelPosition back = scaling->WorldToPixel({longitude, latitude});
            EXPECT_NEAR(back.x, pixel.x, 10);
            EXPECT_NEAR(back.y, pixel.y, 10);
        }
}

/// The polar scaling by its definition: apex, angles and radii, in long double.
WorldPosition ByDefinition(const FourCorners& c, long double x, long double y) {
    using L = long double;
    const L x1 = c[0].pixelX, y1 = c[0].pixelY, x2 = c[1].pixelX, y2 = c[1].pixelY;
    const L x3 = c[2].pixelX, y3 = c[2].pixelY, x4 = c[3].pixelX, y4 = c[3].pixelY;
    const L divisor = (x1 - x2) * (y3 - y4) - (y1 - y2) * (x3 - x4);
    const L ax = ((x1 * y2 - y1 * x2) * (x3 - x4) - (x1 - x2) * (x3 * y4 - y3 * x4)) / divisor;
    const L ay = ((x1 * y2 - y1 * x2) * (y3 - y4) - (y1 - y2) * (x3 * y4 - y3 * x4)) / divisor;
    const auto angle = [&](L px, L py) {
        return std::atan2((x1 - ax) * (py - ay) - (y1 - ay) * (px - ax),
                          (x1 - ax) * (px - ax) + (y1 - ay) * (py - ay));
    };
    const auto radius = [&](L px, L py) { return std::hypot(px - ax, py - ay); };
    const L u = angle(x, y) / angle(x3, y3);
    const L upper = radius(x1, y1) + u * (radius(x3, y3) - radius(x1, y1));
    const L lower = radius(x2, y2) + u * (radius(x4, y4) - radius(x2, y2));
    const L v = (radius(x, y) - upper) / (lower - upper);
    return {static_cast<double>(c[0].x + u * (c[2].x - c[0].x)),
            static_cast<double>(c[0].y + v * (c[1].y - c[0].y))};
}

struct Sheet {
    const char* name;
    FourCorners corners;
};

const Sheet Sheets[] = {
    {"northern",
     {{{9, 56, 3000, 1000}, {9, 55, 1000, 59000}, {11, 56, 57000, 1100}, {11, 55, 59100, 59050}}}},
    {"southern",
     {{{20, -30, 1000, 1000}, {20, -32, 3100, 59000}, {23, -30, 59000, 900}, {23, -32, 57000, 59100}}}},
    {"eastings",
     {{{5e5, 6.1e6, 800, 500},
       {5e5, 6.04e6, 500, 59500},
       {5.6e5, 6.1e6, 59200, 520},
       {5.6e5, 6.04e6, 59500, 59470}}}},
    {"upside down",
     {{{9, 56, 57000, 59000}, {9, 55, 59000, 1000}, {11, 56, 3000, 58900}, {11, 55, 900, 950}}}},
    {"mirrored", {{{9, 56, 57000, 1000}, {9, 55, 59000, 59000}, {11, 56, 3000, 1100}, {11, 55, 900, 59050}}}},
    {"on its side",
     {{{9, 56, 59000, 3000}, {9, 55, 1000, 1000}, {11, 56, 58900, 57000}, {11, 55, 950, 59000}}}},
    {"a wide fan",
     {{{0, 80, 20000, 5000}, {0, 40, 0, 20000}, {90, 80, 40000, 5500}, {90, 40, 59000, 21000}}}},
    {"lopsided",
     {{{9, 56, 12000, 7000}, {9, 55, 1000, 52000}, {11, 56, 57000, 100}, {11, 55, 59900, 59800}}}},
};

/// Parallel or so nearly parallel that the apex lies millions of sheets away.
const Sheet NearlyParallel[] = {
    {"a rectangle", {{{9, 56, 0, 0}, {9, 55, 0, 60000}, {11, 56, 60000, 0}, {11, 55, 60000, 60000}}}},
    {"a turned rectangle",
     {{{9, 56, 3000, 0}, {9, 55, 0, 40000}, {11, 56, 43000, 3000}, {11, 55, 40000, 43000}}}},
    {"one pixel narrower above",
     {{{9, 56, 1, 0}, {9, 55, 0, 60000}, {11, 56, 60000, 0}, {11, 55, 60000, 60000}}}},
    {"one pixel narrower below",
     {{{9, 56, 0, 0}, {9, 55, 1, 60000}, {11, 56, 60000, 0}, {11, 55, 60000, 60000}}}},
    {"a millionth narrower",
     {{{9, 56, 1, 0}, {9, 55, 0, 1000000}, {11, 56, 1000000, 0}, {11, 55, 1000000, 999999}}}},
    {"a billionth narrower",
     {{{9, 56, 1, 0}, {9, 55, 0, 1000000000}, {11, 56, 1000000000, 3}, {11, 55, 1000000000, 999999999}}}},
};

void ExpectOwnCorners(const Sheet& sheet) {
    const auto scaling = MakePolarScaling(sheet.corners);
    const double spanX = std::abs(sheet.corners[2].x - sheet.corners[0].x);
    const double spanY = std::abs(sheet.corners[1].y - sheet.corners[0].y);
    for (const ReferencePoint& corner : sheet.corners) {
        const WorldPosition world =
            scaling->PixelToWorld({static_cast<double>(corner.pixelX), static_cast<double>(corner.pixelY)});
        EXPECT_NEAR(world.x, corner.x, 1e-9 * spanX) << sheet.name;
        EXPECT_NEAR(world.y, corner.y, 1e-9 * spanY) << sheet.name;
    }
}

void ExpectRoundTrip(const Sheet& sheet, double side) {
    const auto scaling = MakePolarScaling(sheet.corners);
    for (double x = 0; x <= side; x += side / 24)
        for (double y = 0; y <= side; y += side / 24) {
            const PixelPosition back = scaling->WorldToPixel(scaling->PixelToWorld({x, y}));
            EXPECT_NEAR(back.x, x, 1e-6 * std::max(1.0, side / 60000)) << sheet.name << " " << x << " " << y;
            EXPECT_NEAR(back.y, y, 1e-6 * std::max(1.0, side / 60000)) << sheet.name << " " << x << " " << y;
        }
}

void ExpectImpossible(const FourCorners& corners, const char* sentence) {
    try {
        MakePolarScaling(corners);
        ADD_FAILURE() << "accepted: " << sentence;
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::CornersImpossible);
        EXPECT_THAT(error.Description(), HasSubstr(sentence));
    }
}

} // namespace

TEST(PolarScaling, AgreesWithProjOnAnEquidistantConicSheetInBothHemispheres) {
    for (const Placing placing : {Placing{}, Placing{17, false}, Placing{-100, false}, Placing{3, true}}) {
        ExpectAgreementWithProj(9, 11, 55, 56, placing);
        ExpectAgreementWithProj(18, 21, -34, -32, placing);
        ExpectAgreementWithProj(-60, 60, 30, 75, placing);
        ExpectAgreementWithProj(100, 150, -45, -10, placing);
        ExpectAgreementWithProj(10, 10.05, 0.10, 0.12, placing); // nearly on the equator: nearly parallel
    }
}

TEST(PolarScaling, FollowsItsDefinitionOnSheetsWithUnequalSides) {
    for (const Sheet& sheet : Sheets) {
        const auto scaling = MakePolarScaling(sheet.corners);
        for (double x = 0; x <= 60000; x += 3000.5)
            for (double y = 6000; y <= 60000; y += 3000.5) {
                const WorldPosition found = scaling->PixelToWorld({x, y});
                const WorldPosition defined = ByDefinition(sheet.corners, x, y);
                EXPECT_NEAR(found.x, defined.x, 1e-10 * std::abs(sheet.corners[2].x)) << sheet.name;
                EXPECT_NEAR(found.y, defined.y, 1e-10 * std::abs(sheet.corners[0].y)) << sheet.name;
            }
    }
}

TEST(PolarScaling, GivesBackItsOwnCornersToABillionthOfTheSpan) {
    for (const Sheet& sheet : Sheets)
        ExpectOwnCorners(sheet);
    for (const Sheet& sheet : NearlyParallel)
        ExpectOwnCorners(sheet);
}

TEST(PolarScaling, GoesToCoordinatesAndBackWithinAMillionthOfAPixel) {
    for (const Sheet& sheet : Sheets)
        ExpectRoundTrip(sheet, 60000);
    for (const Sheet& sheet : NearlyParallel)
        ExpectRoundTrip(sheet, sheet.corners[3].pixelX);
}

TEST(PolarScaling, PassesSmoothlyFromAnApexAboveThroughParallelSidesToOneBelow) {
    const auto middle = [](std::int32_t inset) {
        const FourCorners corners{
            {{9, 56, inset, 0}, {9, 55, -inset, 60000}, {11, 56, 60000, 0}, {11, 55, 60000, 60000}}};
        return MakePolarScaling(corners)->PixelToWorld({31000, 29000});
    };
    const WorldPosition above = middle(1), straight = middle(0), below = middle(-1);
    EXPECT_NEAR(straight.x, 9 + 2 * 31000.0 / 60000, 1e-14);
    EXPECT_NEAR(straight.y, 56 - 29000.0 / 60000, 1e-14);
    EXPECT_NEAR((above.x + below.x) / 2, straight.x, 1e-8);
    EXPECT_NEAR((above.y + below.y) / 2, straight.y, 1e-8);
    EXPECT_NEAR(above.y, straight.y, 1e-4);
}

TEST(PolarScaling, BlendsValuesThatDifferAlongAMeridianOrParallel) {
    const Sheet sheet{"four values each",
                      {{{9.01, 56, 3000, 1000},
                        {9, 55.02, 1000, 59000},
                        {11, 56.03, 57000, 1100},
                        {11.04, 55, 59100, 59050}}}};
    ExpectOwnCorners(sheet);
    ExpectRoundTrip(sheet, 60000);
}

TEST(PolarScaling, RefusesCornersThatSpanNoSheetAndSaysWhy) {
    const ReferencePoint ul{9, 56, 10, 10}, ll{9, 55, 0, 100}, ur{11, 56, 90, 10}, lr{11, 55, 100, 100};
    const auto at = [](ReferencePoint point, std::int32_t x, std::int32_t y) {
        point.pixelX = x;
        point.pixelY = y;
        return point;
    };
    ASSERT_NO_THROW(MakePolarScaling(FourCorners{{ul, ll, ur, lr}}));
    ExpectImpossible({{ul, at(ll, 10, 10), ur, lr}}, "Corners 1 and 2 are the same place on the map.");
    ExpectImpossible({{ul, ll, at(ur, 10, 10), lr}}, "Corners 1 and 3 are the same place on the map.");
    ExpectImpossible({{ul, ll, at(ur, 100, 100), at(lr, 90, 10)}}, "The corners are crossed");
    ExpectImpossible({{ul, at(ll, 100, 100), ur, at(lr, 0, 100)}}, "The corners are crossed");
    ExpectImpossible({{ul, ll, at(ur, 30, 80), lr}}, "the meridians meet inside the sheet");
    ExpectImpossible({{ul, at(ll, 10, 50), at(ur, 10, 90), lr}}, "lie on one line on the map");
    ExpectImpossible({{at(ul, 0, 0), at(ll, 0, 90), at(ur, 0, 40), at(lr, 0, 50)}},
                     "lie on one line on the map");
}

TEST(PolarScaling, RefusesEqualValuesWhereTheyMustDiffer) {
    const auto corners = [](double x3, double y2, double y4) {
        return FourCorners{{{9, 56, 10, 10}, {9, y2, 0, 100}, {x3, 56, 90, 10}, {11, y4, 100, 100}}};
    };
    ExpectImpossible(corners(9, 55, 55), "Corners 1 and 3 have the same longitude or easting.");
    ExpectImpossible(corners(11, 56, 55), "Corners 1 and 2 have the same latitude or northing.");
    ExpectImpossible(corners(11, 55, 56), "Corners 3 and 4 have the same latitude or northing.");
    ExpectImpossible(corners(11, 55, 57), "grows along one edge");
    ExpectImpossible(corners(9 + 1e-12, 55, 55), "span no sheet");
}

TEST(PolarScaling, RefusesValuesThatAreNoNumbers) {
    FourCorners corners{{{9, 56, 10, 10}, {9, 55, 0, 100}, {11, 56, 90, 10}, {11, 55, 100, 100}}};
    corners[2].y = std::numeric_limits<double>::quiet_NaN();
    try {
        MakePolarScaling(corners);
        FAIL();
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::ValueNotFinite);
        EXPECT_EQ(error.Description(), "The Y value of corner 3 is not a finite number.");
    }
}

TEST(PolarScaling, HasNoPixelBeyondTheApex) {
    const FourCorners corners{{{0, 80, 400, 100}, {0, 40, 100, 500}, {90, 80, 600, 100}, {90, 40, 900, 500}}};
    const auto scaling = MakePolarScaling(corners);
    EXPECT_NO_THROW(scaling->WorldToPixel({45, 85}));
    for (const WorldPosition& world : {WorldPosition{45, 2000}, WorldPosition{4000, 60},
                                       WorldPosition{45, std::numeric_limits<double>::infinity()}})
        EXPECT_THROW(scaling->WorldToPixel(world), ComponentError);
}
