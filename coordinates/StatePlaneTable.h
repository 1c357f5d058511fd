#pragma once

#include "coordinates/GridBuilders.h"

#include <span>

// The zones of the United States' State Plane Coordinate System, in the order of the catalogue. The zone
// number of each row is the state-plane code; eastings and northings are metres.

/// 131 zones on NAD27 (EPSG conversion 10000 + code, where that one is not deprecated).
std::span<const GridNumbers> StatePlaneNad27();

/// 123 zones on NAD83 (EPSG conversion 10030 + code, where that one is not deprecated).
std::span<const GridNumbers> StatePlaneNad83();
