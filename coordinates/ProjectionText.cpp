#include "coordinates/ProjectionText.h"

#include "base/ComponentError.h"
#include "coordinates/ProjTransform.h"

#include <algorithm>
#include <cmath>

namespace {

std::string OriginText(const GridNumbers& grid) {
    const auto& v = grid.values;
    return ProjParameter("lat_0", v[0]) + ProjParameter("lon_0", v[1]) + ProjParameter("k_0", v[2]) +
           ProjParameter("x_0", v[3]) + ProjParameter("y_0", v[4]);
}

std::string LambertText(const GridNumbers& grid) {
    const auto& v = grid.values;
    // With one parallel as the origin PROJ takes the scale for what it is: that of the parallel.
    if (v[5] == v[0] && v[6] == v[0])
        return "+proj=lcc" + OriginText(grid) + ProjParameter("lat_1", v[5]);
    return "+proj=lcc" + OriginText(grid) + ProjParameter("lat_1", grid.values[5]) +
           ProjParameter("lat_2", grid.values[6]);
}

/// The series of the New Zealand Map Grid hold for one origin on one ellipsoid, which PROJ sets by itself;
/// other numbers would be ignored in silence.
std::string NewZealandText(const GridNumbers& grid) {
    constexpr std::array<double, 7> origin{-41, 173, 1, 2510000, 6023150, 0, 0};
    if (grid.values != origin)
        throw ComponentError(
            ErrorNumber::UnknownGrid,
            "The New Zealand Map Grid has one origin only, and the grid's numbers differ from it.");
    // Without the scale, which this projection does not take: PROJ would keep it as a foreign addition.
    return "+proj=nzmg" + ProjParameter("lat_0", origin[0]) + ProjParameter("lon_0", origin[1]) +
           ProjParameter("x_0", origin[3]) + ProjParameter("y_0", origin[4]);
}

bool AllFinite(auto numbers) {
    return std::ranges::all_of(numbers, [](double number) { return std::isfinite(number); });
}

} // namespace

std::string EllipsoidText(const QuorvantDatum& datum) {
    return ProjParameter("a", datum.SemiMajorAxis()) + ProjParameter("es", datum.e2());
}

std::string ProjectionText(const GridNumbers& grid) {
    switch (static_cast<ProjectionMethod>(grid.method)) {
    case ProjectionMethod::TransverseMercator:
        return "+proj=tmerc" + OriginText(grid);
    case ProjectionMethod::LambertConformalConic:
        return LambertText(grid);
    case ProjectionMethod::ObliqueStereographic:
        return "+proj=sterea" + OriginText(grid);
    case ProjectionMethod::SwissObliqueMercator:
        return "+proj=somerc" + OriginText(grid);
    case ProjectionMethod::NewZealandMapGrid:
        return NewZealandText(grid);
    case ProjectionMethod::DanishSystem34:
        return {};
    case ProjectionMethod::None:
        break;
    }
    throw ComponentError(ErrorNumber::UnknownGrid,
                         "There is no projection method " + std::to_string(grid.method) + ".");
}

void RequireUsable(const QuorvantDatum& datum) {
    if (!AllFinite(datum.AsNumbers()))
        throw ComponentError(ErrorNumber::ValueNotFinite, "A number of the datum is not finite.");
    if (datum.SemiMajorAxis() <= 0 || datum.e2() < 0 || datum.e2() >= 1)
        throw ComponentError(ErrorNumber::UnknownDatum, "The numbers of the datum describe no ellipsoid.");
}

void RequireFinite(const GridNumbers& grid) {
    if (!AllFinite(grid.values))
        throw ComponentError(ErrorNumber::ValueNotFinite, "A number of the grid is not finite.");
}
