#pragma once

#include "component/PyramidLayout.h"
#include "component/scaling/Scaling.h"

#include <optional>

/// The part of the earth that a map shows, WGS84 degrees. A map across the 180th meridian reaches beyond
/// ±180, so that west is always less than east.
struct Wgs84Bounds {
    double west = 0;
    double south = 0;
    double east = 0;
    double north = 0;
};

/// The bounds of the whole map, its outermost pixels' outer edges included; nothing where no place of the map
/// has a WGS84 position, where the shift to it is unknown and where the grid's method is not computed. A map
/// without a datum is taken as WGS84.
std::optional<Wgs84Bounds> BoundsOf(const PyramidLayout& layout, const Georeference& georeference);
