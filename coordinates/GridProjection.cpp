#include "coordinates/DanishProjection.h"
#include "coordinates/EarthPosition.h"
#include "coordinates/PlaneProjection.h"
#include "coordinates/Projection.h"
#include "coordinates/ProjectionText.h"

#include <variant>

struct GridProjection::State {
    std::variant<PlaneProjection, DanishProjection> projection;
};

GridProjection::GridProjection(const GridNumbers& grid, const QuorvantDatum& datum) {
    RequireUsable(datum);
    RequireFinite(grid);
    if (grid.method == static_cast<std::int32_t>(ProjectionMethod::DanishSystem34))
        state_ = std::make_unique<State>(State{DanishProjection(grid.zone)});
    else
        state_ = std::make_unique<State>(State{PlaneProjection(grid, datum)});
}

GridProjection::~GridProjection() = default;
GridProjection::GridProjection(GridProjection&&) noexcept = default;
GridProjection& GridProjection::operator=(GridProjection&&) noexcept = default;

EastNorth GridProjection::Forward(const LonLat& position) const {
    RequireOnEarth(position);
    return std::visit([&](const auto& projection) { return projection.Forward(position); },
                      state_->projection);
}

LonLat GridProjection::Inverse(const EastNorth& position) const {
    return std::visit([&](const auto& projection) { return projection.Inverse(position); },
                      state_->projection);
}
