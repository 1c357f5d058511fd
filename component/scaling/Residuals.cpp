#include "base/ComponentError.h"
#include "component/PointFit.h"
#include "component/scaling/Scaling.h"

#include <cmath>
#include <numbers>

namespace {

constexpr double Radians = std::numbers::pi / 180;

/// Metres that a degree of longitude (x) and of latitude (y) measures at a latitude of an ellipsoid, by its
/// radii of curvature there.
WorldPosition MetresOfADegree(const QuorvantDatum& datum, double latitude) {
    const double sine = std::sin(latitude * Radians);
    const double root = std::sqrt(1 - datum.e2() * sine * sine);
    const double primeVertical = datum.SemiMajorAxis() / root;
    const double meridian = datum.SemiMajorAxis() * (1 - datum.e2()) / (root * root * root);
    return {primeVertical * std::cos(latitude * Radians) * Radians, meridian * Radians};
}

double MetresBetween(const Georeference& georeference, const WorldPosition& from, const WorldPosition& to) {
    const double x = to.x - from.x, y = to.y - from.y;
    if (georeference.grid)
        return std::hypot(x, y);
    const WorldPosition degree =
        MetresOfADegree(georeference.datum.value_or(QuorvantDatum()), (from.y + to.y) / 2);
    return std::hypot(x * degree.x, y * degree.y);
}

Residual ResidualOf(const Georeference& georeference, const Scaling& scaling, const MeasuredPoint& point) {
    const PixelPosition pixel = scaling.WorldToPixel({point.x, point.y});
    Residual residual{pixel.x - point.pixelX, pixel.y - point.pixelY, 0, 0};
    residual.pixels = std::hypot(residual.right, residual.down);
    residual.metres =
        MetresBetween(georeference, {point.x, point.y}, scaling.PixelToWorld({point.pixelX, point.pixelY}));
    return residual;
}

} // namespace

std::vector<Residual> ResidualsOf(const Georeference& georeference, std::span<const MeasuredPoint> points) {
    const auto scaling = MakeScaling(georeference);
    if (!scaling)
        throw ComponentError(ErrorNumber::MapNotScaled, "The map is not scaled.");
    std::vector<Residual> residuals;
    for (const MeasuredPoint& point : points)
        residuals.push_back(ResidualOf(georeference, *scaling, point));
    return residuals;
}
