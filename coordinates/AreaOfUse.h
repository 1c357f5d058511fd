#pragma once

#include "coordinates/Projection.h"

#include <optional>

/// A part of the earth between two meridians and two parallels, in degrees; east of west, and beyond 180
/// where it crosses that meridian.
struct LonLatBox {
    double west = 0;
    double south = 0;
    double east = 0;
    double north = 0;
};

/// Where the system of a code of the EPSG registry is meant to be used, as PROJ's copy of the registry says.
/// Nothing for a code that it does not have, or where that copy is not installed.
std::optional<LonLatBox> AreaOfUse(int epsg);

/// How far a position lies from the box, within some percent; 0 inside.
double KilometresBeyond(const LonLatBox& box, const LonLat& position);
