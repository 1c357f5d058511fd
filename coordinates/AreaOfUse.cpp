#include "coordinates/AreaOfUse.h"

#include "coordinates/ProjTransform.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

namespace {

constexpr double KilometresPerDegree = 111.2;
constexpr double Unknown = -1000; ///< what PROJ gives for an area without bounds

/// Degrees eastward or westward to the nearest meridian of the box.
double DegreesBeside(const LonLatBox& box, double longitude) {
    const double inside = std::fmod(std::fmod(longitude - box.west, 360) + 360, 360);
    const double width = box.east - box.west;
    return inside <= width ? 0 : std::min(inside - width, 360 - inside);
}

} // namespace

std::optional<LonLatBox> AreaOfUse(int epsg) {
    const ProjContextPointer context = MakeProjContext();
    const ProjPointer system(proj_create_from_database(context.get(), "EPSG", std::to_string(epsg).c_str(),
                                                       PJ_CATEGORY_CRS, 0, nullptr));
    LonLatBox box;
    if (!system || proj_get_area_of_use(context.get(), system.get(), &box.west, &box.south, &box.east,
                                        &box.north, nullptr) == 0)
        return std::nullopt;
    if (std::min({box.west, box.south, box.east, box.north}) <= Unknown)
        return std::nullopt;
    if (box.east < box.west)
        box.east += 360;
    return box;
}

double KilometresBeyond(const LonLatBox& box, const LonLat& position) {
    const double aside =
        DegreesBeside(box, position.longitude) * std::cos(position.latitude * std::numbers::pi / 180);
    const double above = std::max({0.0, position.latitude - box.north, box.south - position.latitude});
    return std::hypot(aside, above) * KilometresPerDegree;
}
