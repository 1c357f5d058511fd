#pragma once

#include "coordinates/GridBuilders.h"

#include <cstdint>
#include <span>

// The zones of the United States' State Plane Coordinate System, in the order of the catalogue. The zone
// number of each row is the state-plane code; eastings and northings are metres.

/// The two grids in the catalogue.
inline constexpr std::int16_t StatePlaneNad27Identifier = 30;
inline constexpr std::int16_t StatePlaneNad83Identifier = 31;

/// 131 zones on NAD27 (EPSG conversion 10000 + code, where that one is not deprecated).
std::span<const GridNumbers> StatePlaneNad27();

/// 123 zones on NAD83 (EPSG conversion 10030 + code, where that one is not deprecated).
std::span<const GridNumbers> StatePlaneNad83();
