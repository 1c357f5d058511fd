#include "coordinates/PlaneProjection.h"

#include "base/ComponentError.h"
#include "base/NumberText.h"
#include "coordinates/ProjectionText.h"

#include <cmath>
#include <numbers>

namespace {

// A formula far outside its domain may answer with finite nonsense; such an answer does not lead back. The
// bounds stand far above any rounding and far below any nonsense.
constexpr double LargestClosureMetres = 0.1;
constexpr double LargestClosureDegrees = 1e-6;

/// The exact series of the transverse Mercator is named because proj.ini may prefer the approximate one.
std::string PipelineText(const GridNumbers& grid, const QuorvantDatum& datum) {
    std::string text = "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step " +
                       ProjectionText(grid) + EllipsoidText(datum);
    if (grid.method == static_cast<std::int32_t>(ProjectionMethod::TransverseMercator))
        text += " +algo=poder_engsager";
    return text;
}

/// In degrees of arc on a sphere, for positions that are near each other.
double Distance(const LonLat& a, const LonLat& b) {
    const double parallel = std::cos(a.latitude * std::numbers::pi / 180);
    return std::hypot(std::remainder(a.longitude - b.longitude, 360) * parallel, a.latitude - b.latitude);
}

[[noreturn]] void ThrowOutside(const char* first, double firstValue, const char* second, double secondValue) {
    throw ComponentError(ErrorNumber::OutsideArea, std::string("The grid is not defined at ") + first + " " +
                                                       NumberToText(firstValue) + ", " + second + " " +
                                                       NumberToText(secondValue) + ".");
}

} // namespace

PlaneProjection::PlaneProjection(const GridNumbers& grid, const QuorvantDatum& datum)
    : transform_(PipelineText(grid, datum)) {
    if (transform_.Empty())
        throw ComponentError(ErrorNumber::UnknownGrid, "The numbers of the grid describe no projection.");
}

EastNorth PlaneProjection::Forward(const LonLat& position) const {
    const ProjPair plane = transform_.Forward({position.longitude, position.latitude});
    const ProjPair back = transform_.Inverse(plane);
    // Written so that an infinite or NaN distance fails too.
    if (!(Distance(position, {back.first, back.second}) <= LargestClosureDegrees))
        ThrowOutside("longitude", position.longitude, "latitude", position.latitude);
    return {plane.first, plane.second};
}

LonLat PlaneProjection::Inverse(const EastNorth& position) const {
    const ProjPair angles = transform_.Inverse({position.easting, position.northing});
    const ProjPair back = transform_.Forward(angles);
    if (!(std::hypot(back.first - position.easting, back.second - position.northing) <= LargestClosureMetres))
        ThrowOutside("easting", position.easting, "northing", position.northing);
    return {angles.first, angles.second};
}
