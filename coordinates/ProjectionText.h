#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <string>

/// " +a=… +es=…" of the datum.
std::string EllipsoidText(const QuorvantDatum& datum);

/// "+proj=… +lat_0=…" of a grid without its ellipsoid, for every method but DanishSystem34, for which the
/// text is empty. Throws UnknownGrid for numbers that describe no projection.
std::string ProjectionText(const GridNumbers& grid);

/// Throws ValueNotFinite, or UnknownDatum for an ellipsoid that is none (axis not positive, e2 not in [0,
/// 1)).
void RequireUsable(const QuorvantDatum& datum);

/// Throws ValueNotFinite.
void RequireFinite(const GridNumbers& grid);
