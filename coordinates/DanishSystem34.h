#pragma once

#include "coordinates/DanishPolynomials.h"

#include <optional>

struct EastNorth;
struct LonLat;

/// The three cadastral systems of Denmark; the numbers are the zones of a DanishSystem34 grid.
enum class DanishSystem { Jutland = 1, Zealand = 2, Bornholm = 3 };

/// Which half of System 34 covers a position: a line through the Belts, drawn by latitude bands. Nothing
/// east of 13.5 degrees. Near the line both systems differ by less than 45 m.
std::optional<DanishSystem> ChooseSystem34(const LonLat& position);

/// From UTM zone 32 on International 1924 to the system: easting is the printed y, which grows to the west,
/// northing the printed x. OutsideArea outside the polynomials' range, or where there and back differs by
/// more than 0.04 m.
EastNorth DanishFromUtm32(DanishSystem system, const EastNorth& utm);

/// The inverse, with the same errors.
EastNorth DanishToUtm32(DanishSystem system, const EastNorth& grid);
