#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <optional>
#include <string>

/// The coordinate reference system of the bare numbers as WKT 2:2019: projected where there is a grid, else
/// geographic; axes east, north in metres or longitude, latitude in degrees. A datum with a shift is bound to
/// WGS84 by its seven parameters, one without is left as it is.
///
/// Empty where there is no such text: for System 34 and System 45, for numbers that describe no system, and
/// where PROJ cannot make one. Needs no proj.db; where PROJ finds one, it may name the ellipsoid.
std::string CrsAsWkt(const QuorvantDatum& datum, const std::optional<GridNumbers>& grid);
