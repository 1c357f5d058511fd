#include "component/library/MapObject.h"

#include "base/CheckedNumbers.h"
#include "component/library/PixelBands.h"
#include "component/library/PixelImage.h"
#include "component/render/TileExport.h"
#include "component/scaling/ShiftRules.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <utility>

namespace {

constexpr const char* ExportExtension = ".png";

template <typename Numbers>
void RequireFinite(const Numbers& numbers, const char* what) {
    if (!std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); }))
        throw ComponentError(ErrorNumber::ValueNotFinite,
                             std::string("The numbers of the ") + what + " are not all finite.");
}

void RequireAtMost(std::size_t count, std::size_t most, const char* what) {
    if (count > most)
        throw ComponentError(ErrorNumber::InvalidArgument, "A map has at most " + std::to_string(most) + " " +
                                                               what + ", not " + std::to_string(count) + ".");
}

void RequirePossible(const std::vector<MeasuredPoint>& points) {
    RequireAtMost(points.size(), MostMeasuredPoints, "points in a list");
    for (const MeasuredPoint& point : points)
        RequireFinite(std::array{point.x, point.y, point.pixelX, point.pixelY}, "points");
}

void RequirePossible(const SystemIdentity& system) {
    RequireFinite(std::array{system.shiftAccuracy}, "shift");
    if (system.shiftAccuracy < 0)
        throw ComponentError(ErrorNumber::InvalidArgument, "An accuracy is not below 0.");
    if (!IsConsistent(system))
        throw ComponentError(ErrorNumber::InvalidArgument, "A shift that is unknown has no name.");
}

void RequireUnshifted(const Georeference& georeference) {
    if (georeference.system.shiftUnknown && !IsEllipsoidAlone(georeference.datum))
        throw ComponentError(ErrorNumber::InvalidArgument,
                             "A datum whose shift is unknown is an ellipsoid alone.");
}

/// What of a pending georeference belongs to no system.
Georeference PointsOf(Georeference pending) {
    Georeference points;
    points.entered = std::move(pending.entered);
    points.checks = std::move(pending.checks);
    return points;
}

} // namespace

MapObject::MapObject(std::shared_ptr<MapState> state, std::shared_ptr<Operations> operations,
                     std::shared_ptr<ViewMemory> views, int threads)
    : MetadataObject(std::move(state)), layout_(Held().record.Layout()), operations_(std::move(operations)),
      views_(std::move(views)), threads_(threads) {}

void MapObject::SetZoom(double zoom) {
    if (!std::isfinite(zoom) || zoom <= 0)
        throw ComponentError(ErrorNumber::InvalidArgument, "A zoom must be a number above 0.");
    Held().record.zoom = zoom;
}

/// A step that fails takes all that is pending with it, so that no later scaling finds half of a system.
template <typename Step>
void MapObject::WithPending(const Step& step) {
    Held();
    try {
        step(pending_);
    } catch (...) {
        DropPendingSystem();
        throw;
    }
}

void MapObject::SetMapDatum(const QuorvantDatum::Numbers& datum) {
    WithPending([&](Georeference& pending) {
        RequireFinite(datum, "datum");
        const DatumShift usable{QuorvantDatum(datum)}; // refuses numbers that no conversion can use
        // What names a grid goes with it; what was set for the grid that is yet to come stays, and so do
        // points, which belong to none.
        if (pending.grid)
            pending = PointsOf(std::move(pending));
        pending.datum = QuorvantDatum(datum);
    });
}

void MapObject::SetMapGrid(std::int32_t method, std::int32_t zone, const std::array<double, 7>& values) {
    WithPending([&](Georeference& pending) {
        RequireFinite(values, "grid");
        const GridNumbers grid{method, zone, values};
        // Refuses numbers that describe no projection.
        const GridProjection usable(grid, pending.datum.value_or(QuorvantDatum()));
        pending.grid = grid;
    });
}

void MapObject::SetGridIdentifier(std::int32_t identifier) {
    WithPending([&](Georeference& pending) { pending.gridIdentifier = identifier; });
}

void MapObject::SetZone(const std::string& zone) {
    WithPending([&](Georeference& pending) { pending.zone = zone; });
}

void MapObject::SetSystemIdentity(const SystemIdentity& system) {
    WithPending([&](Georeference& pending) {
        RequirePossible(system);
        pending.system = system;
    });
}

void MapObject::SetEnteredPoints(const std::vector<MeasuredPoint>& points) {
    WithPending([&](Georeference& pending) {
        RequirePossible(points);
        pending.entered = points;
    });
}

void MapObject::SetCheckSets(const std::vector<CheckSet>& sets) {
    WithPending([&](Georeference& pending) {
        RequireAtMost(sets.size(), MostCheckSets, "check sets");
        for (const CheckSet& set : sets)
            RequirePossible(set.points);
        pending.checks = sets;
    });
}

void MapObject::SetScaling(ScalingKind kind, std::initializer_list<ReferencePoint> points) {
    WithPending([&](Georeference& pending) {
        Georeference whole = pending;
        if (!whole.grid) {
            whole.gridIdentifier = 0;
            whole.zone.clear();
        }
        RequireUnshifted(whole);
        whole.kind = kind;
        whole.points = points;
        Converters converters;
        converters.scaling = MakeScaling(whole);
        // Nothing fails from here on.
        Held().record.georeference = std::move(whole);
        converters_ = std::move(converters);
        pending = {};
    });
}

void MapObject::SetScalingThreePoints(const ReferencePoint& first, const ReferencePoint& second,
                                      const ReferencePoint& third) {
    SetScaling(ScalingKind::Linear, {first, second, third});
}

void MapObject::SetScalingCorners(const ReferencePoint& upperLeft, const ReferencePoint& lowerLeft,
                                  const ReferencePoint& upperRight, const ReferencePoint& lowerRight) {
    SetScaling(ScalingKind::Polar, {upperLeft, lowerLeft, upperRight, lowerRight});
}

MapObject::Converters& MapObject::WithScaling() const {
    if (!IsScaled())
        throw ComponentError(ErrorNumber::MapNotScaled, "The map '" + Name() + "' is not scaled.");
    if (!converters_.scaling)
        converters_.scaling = MakeScaling(Held().record.georeference);
    return converters_;
}

MapObject::Converters& MapObject::WithDatum() const {
    const Georeference& georeference = Held().record.georeference;
    const QuorvantDatum datum = georeference.datum.value_or(QuorvantDatum());
    if (georeference.system.shiftUnknown)
        throw ComponentError(ErrorNumber::ShiftUnknown, "The shift from the coordinates of the map '" +
                                                            Name() + "' to WGS84 is unknown.");
    if (georeference.grid && IsReserved(georeference.grid->method))
        throw ComponentError(ErrorNumber::ProjectionNotComputed,
                             "The grid of the map '" + Name() + "' has projection method " +
                                 std::to_string(georeference.grid->method) +
                                 ", which this program does not compute.");
    if (!converters_.shift)
        converters_.shift = std::make_unique<DatumShift>(datum);
    if (georeference.grid && !converters_.projection)
        converters_.projection = std::make_unique<GridProjection>(*georeference.grid, datum);
    return converters_;
}

WorldPosition MapObject::PixelToWorld(const PixelPosition& pixel) const {
    return WithScaling().scaling->PixelToWorld(pixel);
}

PixelPosition MapObject::WorldToPixel(const WorldPosition& world) const {
    return WithScaling().scaling->WorldToPixel(world);
}

LonLat MapObject::WorldToWgs84(const WorldPosition& world) const {
    const Converters& converters = WithDatum();
    LonLat position{world.x, world.y};
    if (converters.projection)
        position = converters.projection->Inverse({world.x, world.y});
    return converters.shift->ToWgs84(position);
}

WorldPosition MapObject::Wgs84ToWorld(const LonLat& position) const {
    const Converters& converters = WithDatum();
    const LonLat own = converters.shift->FromWgs84(position);
    if (!converters.projection)
        return {own.longitude, own.latitude};
    const EastNorth place = converters.projection->Forward(own);
    return {place.easting, place.northing};
}

TileReader MapObject::NewReader() const {
    return {Held().container, layout_, Held().record.pages, Name()};
}

std::shared_ptr<Container> MapObject::FollowTiles() {
    if (shown_ == Held().container)
        return nullptr;
    // The pixels are the same, so the renderer keeps what it has.
    if (reader_)
        *reader_ = NewReader();
    return std::exchange(shown_, reader_ ? Held().container : nullptr);
}

void MapObject::Detach() {
    MetadataObject::Detach();
    renderer_.reset();
    reader_.reset();
    shown_.reset();
}

bool MapObject::RenderView(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height,
                           std::shared_ptr<const AtlavexImage>& image) {
    const double zoom = Zoom();
    // While an operation works on the file the view keeps what it shows.
    if (operations_->IsRunning())
        return false;
    if (!reader_) {
        reader_ = std::make_unique<TileReader>(NewReader());
        renderer_ = std::make_unique<ViewRenderer>(layout_, *reader_, views_);
    }
    FollowTiles();
    // Whoever is shown drafts asks again; others wait for the one view.
    std::optional<BlinkWait> blink;
    if (views_->Patience() > std::chrono::milliseconds::zero())
        blink.emplace(Held().container->GetDatabase());
    std::shared_ptr<const Bitmap> view;
    if (!renderer_->Render({left, top, width, height, zoom, views_->TiesUp()}, view))
        return false;
    image = std::make_shared<PixelImage>(std::move(view));
    return true;
}

void MapObject::ForgetView() {
    if (renderer_)
        renderer_->ForgetAnswer();
}

void MapObject::ReadPixels(
    const std::function<void(std::span<const std::uint8_t> rows, std::int32_t count)>& band) {
    TileReader reader = NewReader();
    PixelBands bands(layout_, Held().record.format, Held().record.palette, reader, threads_);
    operations_->RunHere([&](Progress& progress, const Operations::Step& step) {
        progress.Expect(layout_.Level(0).rows);
        for (std::int32_t row = 0; row < layout_.Level(0).rows; ++row) {
            const std::span<const std::uint8_t> rows = bands.Read(row, step);
            band(rows, bands.RowsOf(row));
            progress.Add(1);
            step();
        }
    });
}

void MapObject::ExportTiles(const std::string& folder, const std::string& extension) {
    if (extension != ExportExtension)
        throw ComponentError(ErrorNumber::InvalidArgument,
                             "Tiles can be exported as PNG only, not as '" + extension + "'.");
    const ExportedMap exported{Identifier(), Name(), layout_, MapGeoreference()};
    TileReader reader = NewReader();
    operations_->Run([&](Progress& progress) {
        progress.Expect(layout_.Entries());
        ::ExportTiles(exported, reader, folder, progress, threads_);
    });
}
