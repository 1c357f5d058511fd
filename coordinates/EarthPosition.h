#pragma once

#include "coordinates/Projection.h"

/// Throws OutsideArea unless both angles are finite, the latitude within ±90 and the longitude within ±360
/// degrees.
void RequireOnEarth(const LonLat& position);
