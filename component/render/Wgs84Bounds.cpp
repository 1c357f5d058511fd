#include "component/render/Wgs84Bounds.h"

#include "base/ComponentError.h"
#include "coordinates/Projection.h"

#include <algorithm>
#include <cmath>

namespace {

/// Places looked at along each side of the map; between two of them an edge bends by far less than a pixel of
/// an overview.
constexpr int Places = 65;

/// From a map's own coordinates to WGS84.
class ToWgs84 {
public:
    explicit ToWgs84(const Georeference& georeference)
        : scaling_(MakeScaling(georeference)), shift_(georeference.datum.value_or(QuorvantDatum())) {
        if (georeference.grid)
            projection_.emplace(*georeference.grid, georeference.datum.value_or(QuorvantDatum()));
    }

    /// Nothing where the map's grid or datum is not defined.
    std::optional<LonLat> At(const PixelPosition& pixel) const {
        const WorldPosition world = scaling_->PixelToWorld(pixel);
        try {
            const LonLat own =
                projection_ ? projection_->Inverse({world.x, world.y}) : LonLat{world.x, world.y};
            return shift_.ToWgs84(own);
        } catch (const ComponentError&) {
            return std::nullopt;
        }
    }

private:
    std::unique_ptr<Scaling> scaling_;
    DatumShift shift_;
    std::optional<GridProjection> projection_;
};

/// Grows with each place; longitudes run on from one place to the next instead of jumping at ±180.
class GrowingBounds {
public:
    void Add(const LonLat& place) {
        const double longitude =
            bounds_ ? last_ + std::remainder(place.longitude - last_, 360.0) : place.longitude;
        if (!bounds_)
            bounds_ = {longitude, place.latitude, longitude, place.latitude};
        bounds_->west = std::min(bounds_->west, longitude);
        bounds_->east = std::max(bounds_->east, longitude);
        bounds_->south = std::min(bounds_->south, place.latitude);
        bounds_->north = std::max(bounds_->north, place.latitude);
        last_ = longitude;
    }
    const std::optional<Wgs84Bounds>& Bounds() const { return bounds_; }

private:
    std::optional<Wgs84Bounds> bounds_;
    double last_ = 0;
};

/// The i-th of the places between the outer edges of the first and the last pixel.
double PlaceAt(int i, std::int32_t size) {
    return -0.5 + static_cast<double>(size) * i / (Places - 1);
}

} // namespace

std::optional<Wgs84Bounds> BoundsOf(const PyramidLayout& layout, const Georeference& georeference) {
    const bool reserved = georeference.grid && IsReserved(georeference.grid->method);
    if (georeference.kind == ScalingKind::None || georeference.system.shiftUnknown || reserved)
        return std::nullopt;
    const ToWgs84 convert(georeference);
    GrowingBounds bounds;
    for (int row = 0; row < Places; ++row)
        for (int i = 0; i < Places; ++i) {
            // To and fro, so that one place is always near the one before.
            const int column = row % 2 == 0 ? i : Places - 1 - i;
            if (const auto place =
                    convert.At({PlaceAt(column, layout.Width()), PlaceAt(row, layout.Height())}))
                bounds.Add(*place);
        }
    return bounds.Bounds();
}
