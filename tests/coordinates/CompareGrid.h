#pragma once

#include "coordinates/QuorvantGrid.h"
#include "tests/coordinates/ReferenceProj.h"

/// Expects that the grid gives PROJ's numbers at every point, forward and inverse, to 2 mm, and leads back to
/// the point within 1 mm.
void ExpectSameGrid(const QuorvantGrid& grid, const ReferenceGrid& reference,
                    const std::vector<LonLat>& points);
