// Datum, grid and scaling of a map, and its coordinates there and back.

#include "tests/component/LibraryFixture.h"

#include <cmath>
#include <limits>

namespace {

/// ED50 and UTM zone 32 on it.
constexpr QuorvantDatum::Numbers Ed50{6378388.0, 0.00672267002233332, -87, -98, -121, 0, 0, 0, 0};
constexpr std::array<double, 7> Utm32{0, 9, 0.9996, 500000, 0, 0, 0};
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

class MapGeoreferencing : public LibraryTest {
protected:
    MapGeoreferencing()
        : library_(NewLibrary()), map_(AddMap(*library_, MakeSheet(PixelFormat::Grey, 1000, 800))) {}

    void ScaleInMetres(AtlavexMap& map) const {
        map.SetMapDatum(Ed50);
        map.SetMapGrid(1, 32, Utm32);
        map.SetScalingThreePoints({570000, 6310000, 0, 0}, {580000, 6310010, 999, 0},
                                  {570010, 6302000, 0, 799});
    }
    static void ScaleLinearly(AtlavexMap& map) {
        map.SetScalingThreePoints({10, 56, 0, 0}, {11, 56, 999, 0}, {10, 55, 0, 799});
    }

    struct Refusal {
        std::function<void(AtlavexMap&)> call;
        ErrorNumber number;
    };
    /// Each call of a georeference with something that it refuses.
    static std::vector<Refusal> Refusals() {
        const ReferencePoint a{0, 0, 0, 0}, b{1, 1, 100, 100}, c{2, 2, 200, 200}, odd{Nan, 0, 3, 500};
        QuorvantDatum::Numbers datum = Ed50;
        datum[8] = Infinity;
        std::array<double, 7> grid = Utm32;
        grid[6] = Nan;
        return {{[=](AtlavexMap& m) { m.SetScalingThreePoints(a, b, c); }, ErrorNumber::PointsOnALine},
                {[=](AtlavexMap& m) { m.SetScalingThreePoints(a, a, b); }, ErrorNumber::PointsOnALine},
                {[=](AtlavexMap& m) { m.SetScalingThreePoints(a, b, odd); }, ErrorNumber::ValueNotFinite},
                {[=](AtlavexMap& m) { m.SetScalingCorners(a, a, a, a); }, ErrorNumber::CornersImpossible},
                {[=](AtlavexMap& m) { m.SetScalingCorners(a, b, c, odd); }, ErrorNumber::ValueNotFinite},
                {[=](AtlavexMap& m) { m.SetMapDatum(datum); }, ErrorNumber::ValueNotFinite},
                {[=](AtlavexMap& m) { m.SetMapGrid(1, 32, grid); }, ErrorNumber::ValueNotFinite},
                {[=](AtlavexMap& m) { m.SetMapGrid(99, 32, Utm32); }, ErrorNumber::UnknownGrid}};
    }

    std::unique_ptr<AtlavexLibrary> library_;
    std::shared_ptr<AtlavexMap> map_;
};

} // namespace

TEST_F(MapGeoreferencing, OfANewMapIsNone) {
    EXPECT_FALSE(map_->IsScaled());
    EXPECT_FALSE(map_->HasGrid());
    EXPECT_EQ(map_->MapGeoreference(), Georeference{});
    EXPECT_ERROR(map_->PixelToWorld({0, 0}), ErrorNumber::MapNotScaled);
    EXPECT_ERROR(map_->WorldToPixel({0, 0}), ErrorNumber::MapNotScaled);
}

TEST_F(MapGeoreferencing, IsPendingUntilAScalingTakesIt) {
    map_->SetGridIdentifier(28);
    map_->SetZone("32");
    map_->SetMapDatum(Ed50);
    map_->SetMapGrid(1, 32, Utm32);
    EXPECT_EQ(map_->MapGeoreference(), Georeference{});
    EXPECT_FALSE(map_->HasGrid());
    ScaleLinearly(*map_);
    EXPECT_TRUE(map_->HasGrid());
    EXPECT_EQ(map_->MapGeoreference().datum, QuorvantDatum(Ed50));
    EXPECT_EQ(map_->MapGeoreference().grid, (GridNumbers{1, 32, Utm32}));
    EXPECT_EQ(map_->MapGeoreference().gridIdentifier, 28);
    EXPECT_EQ(map_->MapGeoreference().zone, "32");
}

TEST_F(MapGeoreferencing, PendingIsNotSaved) {
    ScaleInMetres(*map_);
    const Georeference former = map_->MapGeoreference();
    map_->SetMapDatum(QuorvantDatum().AsNumbers());
    map_->SetGridIdentifier(9);
    EXPECT_EQ(map_->MapGeoreference(), former);
    library_->SaveToFile(PathOf("lib.Atlavex"), "");
    EXPECT_EQ(MapAt(*Open(PathOf("lib.Atlavex"), ""), 1)->MapGeoreference(), former);
}

TEST_F(MapGeoreferencing, ADatumDropsThePendingGridAndWhatNamesIt) {
    map_->SetMapDatum(Ed50);
    map_->SetMapGrid(1, 32, Utm32);
    map_->SetGridIdentifier(7);
    map_->SetZone("32");
    map_->SetMapDatum(Ed50);
    ScaleLinearly(*map_);
    EXPECT_FALSE(map_->HasGrid());
    EXPECT_EQ(map_->MapGeoreference().gridIdentifier, 0);
    EXPECT_EQ(map_->MapGeoreference().zone, "");
}

TEST_F(MapGeoreferencing, WithoutASystemKeepsNoneOfTheFormer) {
    ScaleInMetres(*map_);
    ScaleLinearly(*map_);
    EXPECT_FALSE(map_->HasGrid());
    EXPECT_FALSE(map_->MapGeoreference().datum.has_value());
    EXPECT_EQ(map_->MapGeoreference().gridIdentifier, 0);
    EXPECT_EQ(map_->MapGeoreference().zone, "");
    // What one scaling took, the next does not find again.
    map_->SetScalingCorners({10, 56, 3, 2}, {10, 55, 0, 799}, {11, 56, 990, 0}, {11, 55, 999, 797});
    EXPECT_FALSE(map_->MapGeoreference().datum.has_value());
    // A name without a grid names nothing.
    map_->SetGridIdentifier(28);
    map_->SetZone("32");
    ScaleLinearly(*map_);
    EXPECT_EQ(map_->MapGeoreference().gridIdentifier, 0);
    EXPECT_EQ(map_->MapGeoreference().zone, "");
}

TEST_F(MapGeoreferencing, KeepsTheReferencePointsAsEntered) {
    const std::vector<ReferencePoint> three{{1.25, 2.5, 10, 20}, {3, 2, 900, 30}, {1, -1, 5, 700}};
    map_->SetScalingThreePoints(three[0], three[1], three[2]);
    EXPECT_EQ(map_->MapGeoreference().kind, ScalingKind::Linear);
    EXPECT_EQ(map_->MapGeoreference().points, three);
    for (const ReferencePoint& point : three) {
        const WorldPosition world = map_->PixelToWorld({double(point.pixelX), double(point.pixelY)});
        EXPECT_NEAR(world.x, point.x, 1e-12);
        EXPECT_NEAR(world.y, point.y, 1e-12);
    }
    const std::vector<ReferencePoint> four{
        {10, 56, 3, 2}, {10, 55, 0, 799}, {11, 56, 990, 0}, {11, 55, 999, 797}};
    map_->SetScalingCorners(four[0], four[1], four[2], four[3]);
    EXPECT_EQ(map_->MapGeoreference().kind, ScalingKind::Polar);
    EXPECT_EQ(map_->MapGeoreference().points, four);
    for (const ReferencePoint& point : four) {
        const WorldPosition world = map_->PixelToWorld({double(point.pixelX), double(point.pixelY)});
        EXPECT_NEAR(world.x, point.x, 1e-9);
        EXPECT_NEAR(world.y, point.y, 1e-9);
    }
}

TEST_F(MapGeoreferencing, ThatIsRefusedLeavesTheFormerAndNothingPending) {
    ScaleInMetres(*map_);
    const Georeference former = map_->MapGeoreference();
    for (const auto& [refused, number] : Refusals()) {
        map_->SetGridIdentifier(1);
        map_->SetZone("33");
        map_->SetMapDatum(QuorvantDatum().AsNumbers());
        map_->SetMapGrid(1, 33, {0, 15, 0.9996, 500000, 0, 0, 0});
        EXPECT_ERROR(refused(*map_), number);
        EXPECT_EQ(map_->MapGeoreference(), former);
        EXPECT_NEAR(map_->PixelToWorld({0, 0}).x, 570000, 1e-6);
        const LonLat wgs84 = map_->WorldToWgs84({570000, 6310000});
        EXPECT_NEAR(wgs84.longitude, 10.14869760549618, 1e-8);
        // A scaling that comes later finds nothing of it.
        ScaleLinearly(*map_);
        EXPECT_EQ(map_->MapGeoreference().datum, std::nullopt);
        EXPECT_EQ(map_->MapGeoreference().grid, std::nullopt);
        ScaleInMetres(*map_);
    }
}

TEST_F(MapGeoreferencing, ThatIsRefusedLeavesAMapWithoutOneWithoutOne) {
    for (const auto& [refused, number] : Refusals()) {
        map_->SetMapDatum(Ed50);
        map_->SetMapGrid(1, 32, Utm32);
        EXPECT_ERROR(refused(*map_), number);
        EXPECT_EQ(map_->MapGeoreference(), Georeference{});
        EXPECT_FALSE(map_->IsScaled());
    }
}

TEST_F(MapGeoreferencing, PendingCanBeDropped) {
    map_->SetMapDatum(Ed50);
    map_->SetMapGrid(1, 32, Utm32);
    map_->DropPendingSystem();
    ScaleLinearly(*map_);
    EXPECT_EQ(map_->MapGeoreference().datum, std::nullopt);
    EXPECT_EQ(map_->MapGeoreference().grid, std::nullopt);
}

TEST_F(MapGeoreferencing, RefusesADatumThatNoConversionCanUse) {
    constexpr double Largest = std::numeric_limits<double>::max();
    for (const auto& [axis, e2] : {std::pair{0.0, 0.0066},
                                   {-6378137.0, 0.0066},
                                   {6378137.0, 1.0},
                                   {6378137.0, 1.5},
                                   {6378137.0, -0.1},
                                   {6378137.0, Largest}}) {
        QuorvantDatum::Numbers datum = Ed50;
        datum[0] = axis;
        datum[1] = e2;
        SCOPED_TRACE(testing::Message() << axis << " " << e2);
        EXPECT_ERROR(map_->SetMapDatum(datum), ErrorNumber::UnknownDatum);
    }
    QuorvantDatum::Numbers sphere = Ed50;
    sphere[1] = 0;
    map_->SetMapDatum(sphere);
    ScaleLinearly(*map_);
    EXPECT_NO_THROW(map_->WorldToWgs84({10, 50}));
}

TEST_F(MapGeoreferencing, GoesThereAndBackAlsoAfterReopening) {
    ScaleInMetres(*map_);
    library_->SaveToFile(PathOf("lib.Atlavex"), "key");
    const auto again = Open(PathOf("lib.Atlavex"), "key");
    const auto loaded = MapAt(*again, 1);
    EXPECT_EQ(loaded->MapGeoreference(), map_->MapGeoreference());
    for (const PixelPosition pixel : {PixelPosition{0, 0}, {999, 799}, {-50.25, 1200.75}, {500, 400}}) {
        const WorldPosition world = map_->PixelToWorld(pixel);
        EXPECT_EQ(loaded->PixelToWorld(pixel).x, world.x);
        EXPECT_EQ(loaded->PixelToWorld(pixel).y, world.y);
        const PixelPosition back = loaded->WorldToPixel(world);
        EXPECT_NEAR(back.x, pixel.x, 1e-6);
        EXPECT_NEAR(back.y, pixel.y, 1e-6);
        const LonLat wgs84 = loaded->WorldToWgs84(world);
        const WorldPosition there = loaded->Wgs84ToWorld(wgs84);
        EXPECT_NEAR(there.x, world.x, 1e-3);
        EXPECT_NEAR(there.y, world.y, 1e-3);
    }
}

TEST_F(MapGeoreferencing, ShiftsThroughTheDatumToWgs84) {
    // ED50 / UTM zone 32 570000 6310000 by PROJ 9.1 with the same seven parameters, heights dropped.
    ScaleInMetres(*map_);
    const LonLat wgs84 = map_->WorldToWgs84({570000, 6310000});
    EXPECT_NEAR(wgs84.longitude, 10.14869760549618, 1e-8);
    EXPECT_NEAR(wgs84.latitude, 56.92652103560997, 1e-8);
}

TEST_F(MapGeoreferencing, WithoutADatumIsTakenAsWgs84) {
    map_->SetScalingThreePoints({10, 56, 0, 0}, {11, 56, 999, 0}, {10, 55, 0, 799});
    const LonLat position = map_->WorldToWgs84({10.5, 55.5});
    EXPECT_NEAR(position.longitude, 10.5, 1e-12);
    EXPECT_NEAR(position.latitude, 55.5, 1e-12);
}

TEST_F(MapGeoreferencing, OutsideItsAreaIsAnError) {
    ScaleInMetres(*map_);
    EXPECT_ERROR(map_->WorldToWgs84({1e12, 1e12}), ErrorNumber::OutsideArea);
    EXPECT_ERROR(map_->Wgs84ToWorld({10, 91}), ErrorNumber::OutsideArea);
    EXPECT_ERROR(map_->Wgs84ToWorld({Nan, 0}), ErrorNumber::OutsideArea);
}

TEST_F(MapGeoreferencing, ChangedNumbersTakeEffectWithTheirScaling) {
    ScaleInMetres(*map_);
    const auto here = [this] { return map_->WorldToWgs84({570000, 6310000}); };
    const LonLat before = here();
    QuorvantDatum::Numbers shifted = Ed50;
    shifted[2] += 1000;
    map_->SetMapDatum(shifted);
    map_->SetMapGrid(1, 32, Utm32);
    EXPECT_EQ(here().longitude, before.longitude);
    map_->SetScalingThreePoints({0, 0, 0, 0}, {1, 0, 1, 0}, {0, 1, 0, 1});
    EXPECT_NEAR(map_->PixelToWorld({7, 9}).x, 7, 1e-9);
    const LonLat after = here();
    EXPECT_GT(std::hypot(after.longitude - before.longitude, after.latitude - before.latitude), 1e-3);
}
