#include "component/ScalingReview.h"
#include "component/Worldfile.h"
#include "coordinates/Projection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::int32_t Width = 2000, Height = 1500;

std::vector<std::string> Doubts(const Georeference& georeference, std::int32_t width = Width,
                                std::int32_t height = Height) {
    std::vector<std::string> doubts;
    for (const ScalingRemark& remark : ReviewScaling(georeference, width, height)) {
        doubts.emplace_back(NameOf(remark.doubt));
        EXPECT_TRUE(remark.sentence.ends_with('.')) << remark.sentence;
    }
    return doubts;
}

Georeference InGrid(std::int16_t identifier, std::int32_t zone) {
    const QuorvantGrid grid = MakeGrid(identifier, zone);
    Georeference georeference;
    georeference.datum = grid.Datum();
    georeference.grid = grid.AsNumbers();
    georeference.gridIdentifier = identifier;
    return georeference;
}

EastNorth PlaceIn(const Georeference& georeference, const LonLat& place) {
    return GridProjection(*georeference.grid, *georeference.datum).Forward(place);
}

Georeference Through(Georeference georeference, const Affine& affine,
                     const std::vector<std::array<std::int32_t, 2>>& pixels = {
                         {50, 60}, {1900, 70}, {80, 1400}}) {
    georeference.kind = ScalingKind::Linear;
    for (const auto& [x, y] : pixels)
        georeference.points.push_back(
            {affine.a * x + affine.b * y + affine.c, affine.d * x + affine.e * y + affine.f, x, y});
    return georeference;
}

/// A sheet of square pixels about a place, turned anticlockwise by so many degrees.
Affine Turned(const EastNorth& middle, double metresPerPixel, double degrees) {
    const double c = metresPerPixel * std::cos(degrees * std::numbers::pi / 180);
    const double s = metresPerPixel * std::sin(degrees * std::numbers::pi / 180);
    return {c, s, middle.easting, s, -c, middle.northing};
}

Georeference Exchanged(Georeference georeference) {
    for (ReferencePoint& point : georeference.points)
        std::swap(point.x, point.y);
    return georeference;
}

Georeference Times(Georeference georeference, double factor) {
    for (ReferencePoint& point : georeference.points) {
        point.x *= factor;
        point.y *= factor;
    }
    return georeference;
}

Georeference Degrees(const QuorvantDatum& datum = {}) {
    Georeference georeference;
    georeference.datum = datum;
    return georeference;
}

const EastNorth Munich{691000, 5334000}; ///< UTM zone 32
constexpr std::int16_t UtmEtrs89 = 13, StatePlaneNad83 = 31, DanishMainland = 48;

} // namespace

TEST(ScalingReview, SaysNothingOfMapsInEveryGridTurnedByAnyAngle) {
    struct Case {
        std::int16_t grid;
        std::int32_t zone;
        LonLat place;
    };
    const std::vector<Case> cases{
        {1, 33, {13.4, 52.5}},    {2, 56, {151.2, -33.9}},   {3, 0, {-0.1, 51.5}},
        {3, 0, {-7.5, 57.8}},     {4, 0, {-6.3, 53.3}},      {6, 0, {18.1, 59.3}},
        {7, 0, {7.4, 46.9}},      {9, 0, {20, 60.2}},        {13, 33, {29, 70.5}},
        {13, 32, {5.1, 60.4}},    {14, 0, {6.1, 49.6}},      {15, 55, {145, -37.8}},
        {16, 53, {133, -25}},     {17, 0, {9.7, 47.3}},      {20, 0, {174.8, -41.3}},
        {21, 0, {170.5, -45.9}},  {22, 0, {4.4, 50.8}},      {23, 0, {2.4, 48.9}},
        {27, 0, {8.7, 42}},       {28, 30, {-3.7, 40.4}},    {29, 4, {11.6, 48.1}},
        {30, 4601, {-122, 47.5}}, {31, 4204, {-98.5, 29.4}}, {31, 5010, {-176, 52}},
        {32, 10, {-122.4, 37.8}}, {33, 19, {-70.3, 43.7}},   {34, 0, {4.9, 52.4}},
        {35, 0, {12.5, 41.9}},    {37, 0, {10.7, 59.9}},     {45, 0, {-4.5, 48.4}},
        {47, 32, {9.5, 56}},      {48, 0, {10.2, 56.2}},     {49, 0, {14.9, 55.1}},
        {31, 3104, {-74, 40.7}}};
    for (const Case& at : cases) {
        const Georeference system = InGrid(at.grid, at.zone);
        const double side = at.grid >= 48 ? -1 : 1; // eastings that grow westwards
        for (const double angle : {0.0, 1.5, 45.0, 90.0, 137.0, 180.0, 270.0}) {
            Affine affine = Turned(PlaceIn(system, at.place), 2, angle);
            affine.a *= side;
            affine.b *= side;
            EXPECT_THAT(Doubts(Through(system, affine)), IsEmpty())
                << at.grid << " " << at.zone << " " << angle;
        }
    }
}

TEST(ScalingReview, SaysNothingOfWholeCountriesInOneZone) {
    // Norway from 4 to 31 degrees east, a kilometre a pixel, in the zone of its middle.
    EXPECT_THAT(Doubts(Through(InGrid(UtmEtrs89, 33), Turned({-80000, 7940000}, 800, 0))), IsEmpty());
}

TEST(ScalingReview, SaysNothingOfMapsInDegrees) {
    // The whole earth with equal degrees; a plan with equal metres; one in between; beyond the date line.
    EXPECT_THAT(Doubts(Through(Degrees(), {0.12, 0, -180, 0, -0.12, 90}), 3000, 1500), IsEmpty());
    const double narrow = std::cos(60 * std::numbers::pi / 180);
    EXPECT_THAT(Doubts(Through(Degrees(), {1e-4 / narrow, 0, 25, 0, -1e-4, 60})), IsEmpty());
    EXPECT_THAT(Doubts(Through(Degrees(), {1.4e-4, 0, 25, 0, -1e-4, 60})), IsEmpty());
    EXPECT_THAT(Doubts(Through(Degrees(), {1e-3, 0, 179, 0, -1e-3, -16})), IsEmpty());
    // Without any system.
    EXPECT_THAT(Doubts(Through({}, {1e-3, 0, 9, 0, -1e-3, 48})), IsEmpty());
}

TEST(ScalingReview, SaysNothingOfASheetWhoseMeridiansConverge) {
    Georeference sheet = Degrees();
    sheet.kind = ScalingKind::Polar;
    sheet.points = {{9, 48, 60, 50}, {9, 47, 20, 1450}, {10, 48, 1000, 50}, {10, 47, 1040, 1450}};
    EXPECT_THAT(Doubts(sheet), IsEmpty());
    // Near the pole, the apex close above the sheet.
    sheet.points = {{-30, 85, 700, 300}, {-30, 75, 100, 1340}, {30, 85, 1300, 300}, {30, 75, 1900, 1340}};
    EXPECT_THAT(Doubts(sheet), IsEmpty());
}

TEST(ScalingReview, SaysNothingOfAWorldfileOnALargeMap) {
    const Affine affine{0.5, 0, Munich.easting, 0, -0.5, Munich.northing};
    Georeference georeference = InGrid(UtmEtrs89, 32);
    georeference.kind = ScalingKind::Linear;
    const auto points = WorldfilePoints(affine);
    georeference.points.assign(points.begin(), points.end());
    EXPECT_THAT(Doubts(georeference, 200000, 100000), IsEmpty());
}

TEST(ScalingReview, TellsAMirroredMap) {
    for (const double angle : {0.0, 180.0}) {
        Affine affine = Turned(Munich, 2, angle);
        affine.a = -affine.a;
        affine.b = -affine.b;
        EXPECT_THAT(Doubts(Through(InGrid(UtmEtrs89, 32), affine)), ElementsAre("mirrored")) << angle;
    }
    EXPECT_THAT(Doubts(Through(Degrees(), {1e-3, 0, 9, 0, 1e-3, 1})), ElementsAre("mirrored"));
    // Eastings that grow eastwards where those of the system grow westwards.
    const Georeference danish = InGrid(DanishMainland, 0);
    EXPECT_THAT(Doubts(Through(danish, Turned(PlaceIn(danish, {10.2, 56.2}), 2, 0))),
                ElementsAre("mirrored"));
}

TEST(ScalingReview, TellsExchangedAxes) {
    const Georeference sheet = Through(InGrid(UtmEtrs89, 32), Turned(Munich, 2, 0));
    EXPECT_THAT(Doubts(Exchanged(sheet)), ElementsAre("swapped-axes"));
    const Georeference quarter = Through(InGrid(UtmEtrs89, 32), Turned(Munich, 2, 90));
    EXPECT_THAT(Doubts(Exchanged(quarter)), ElementsAre("swapped-axes")) << "the place tells";
    EXPECT_THAT(Doubts(Exchanged(Through(Degrees(), {1e-3, 0, 9, 0, -1e-3, 48}))),
                ElementsAre("swapped-axes"));
}

TEST(ScalingReview, TellsFeetForMetresAndMetresForFeet) {
    for (const auto& [zone, place] :
         {std::pair{1201, LonLat{-89, 40}}, {4204, {-98.5, 29.4}}, {3104, {-74, 40.7}}}) {
        const Georeference system = InGrid(StatePlaneNad83, zone);
        const Georeference sheet = Through(system, Turned(PlaceIn(system, place), 2, 0));
        EXPECT_THAT(Doubts(sheet), IsEmpty());
        EXPECT_THAT(Doubts(Times(sheet, 1 / 0.3048)), ElementsAre("feet-for-metres")) << zone;
    }
    const Georeference texas = InGrid(StatePlaneNad83, 4204);
    const Georeference sheet = Through(texas, Turned(PlaceIn(texas, {-98.5, 29.4}), 2, 0));
    EXPECT_THAT(Doubts(Times(sheet, 0.3048)), ElementsAre("metres-for-feet"));
    const Georeference utm = Through(InGrid(UtmEtrs89, 32), Turned(Munich, 2, 0));
    EXPECT_THAT(Doubts(Times(utm, 1 / 0.3048)), ElementsAre("feet-for-metres"));
}

TEST(ScalingReview, TellsAMapFarFromItsZone) {
    EXPECT_THAT(Doubts(Through(InGrid(UtmEtrs89, 32), Turned({4000000, 5334000}, 2, 0))),
                ElementsAre("far-away"));
    // Numbers of a grid with other false values.
    EXPECT_THAT(Doubts(Through(InGrid(3, 0), Turned({4468000, 5334000}, 2, 0))), ElementsAre("far-away"));
    // The datum of another continent.
    EXPECT_THAT(Doubts(Through(Degrees(MakeGrid(22, 0).Datum()), {1e-3, 0, 144, 0, -1e-3, -37})),
                ElementsAre("far-away"));
}

TEST(ScalingReview, TellsTheWrongHemisphere) {
    const QuorvantDatum nad27 = MakeGrid(32, 15).Datum();
    EXPECT_THAT(Doubts(Through(Degrees(nad27), {1e-3, 0, 98, 0, -1e-3, 40})), ElementsAre("hemisphere"));
    const QuorvantDatum australian = MakeGrid(15, 55).Datum();
    EXPECT_THAT(Doubts(Through(Degrees(australian), {1e-3, 0, 145, 0, -1e-3, 37})),
                ElementsAre("hemisphere"));
    // Northings counted from the equator, where the grid adds ten million metres, and the other way round.
    EXPECT_THAT(Doubts(Through(InGrid(2, 56), Turned({334000, -3750000}, 2, 0))), ElementsAre("hemisphere"));
    EXPECT_THAT(Doubts(Through(InGrid(1, 56), Turned({334000, -3750000}, 2, 0))), ElementsAre("hemisphere"));
}

TEST(ScalingReview, TellsPixelsThatAreNoSquares) {
    Affine affine = Turned(Munich, 2, 30);
    affine.a *= 1.05;
    affine.d *= 1.05;
    EXPECT_THAT(Doubts(Through(InGrid(UtmEtrs89, 32), affine)), IsEmpty()) << "a fax is no better";
    affine.a *= 1.1;
    affine.d *= 1.1;
    EXPECT_THAT(Doubts(Through(InGrid(UtmEtrs89, 32), affine)), ElementsAre("scale-ratio"));
    EXPECT_THAT(Doubts(Through(Degrees(), {1e-3, 0, 9, 0, -2e-3, 49})), ElementsAre("scale-ratio"));
}

TEST(ScalingReview, TellsRowsThatDoNotMeetColumnsAtRightAngles) {
    Affine affine = Turned(Munich, 2, 0);
    affine.b = 2 * std::sin(2 * std::numbers::pi / 180);
    EXPECT_THAT(Doubts(Through(InGrid(UtmEtrs89, 32), affine)), IsEmpty());
    affine.b = 2 * std::sin(4 * std::numbers::pi / 180);
    EXPECT_THAT(Doubts(Through(InGrid(UtmEtrs89, 32), affine)), ElementsAre("shear"));
    EXPECT_THAT(Doubts(Through(Degrees(), {1e-3, 4e-4, 9, 0, -1e-3, 1})), ElementsAre("shear"));
}

TEST(ScalingReview, TellsPointsThatAreNearOrOnALine) {
    const Georeference system = InGrid(UtmEtrs89, 32);
    const Affine affine = Turned(Munich, 2, 0);
    EXPECT_THAT(Doubts(Through(system, affine, {{1000, 700}, {1120, 700}, {1000, 790}})),
                ElementsAre("points-near"));
    EXPECT_THAT(Doubts(Through(system, affine, {{0, 0}, {1000, 750}, {1999, 1440}})),
                ElementsAre("points-on-line"));
    // A strip has no other points to offer.
    EXPECT_THAT(Doubts(Through(system, affine, {{0, 0}, {19999, 0}, {0, 299}}), 20000, 300), IsEmpty());
}

TEST(ScalingReview, SaysNothingOfAMapWithoutAScaling) {
    EXPECT_THAT(Doubts({}), IsEmpty());
}
