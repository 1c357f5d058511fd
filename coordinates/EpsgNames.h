#pragma once

#include "coordinates/EpsgTable.h"
#include "coordinates/SystemNames.h"

#include <optional>
#include <string>

/// The projected system of the EPSG registry that a grid of the catalogue is.
struct EpsgGrid {
    int code = 0;
    std::string name;
    bool northFirst = false; ///< its first axis is the northing
    const EpsgBase* base = nullptr;
};

/// Nothing for a grid that the registry does not have in metres.
std::optional<EpsgGrid> EpsgGridOf(const GridFit& grid);

/// The geographic systems whose datum has these numbers; they differ in code.
std::vector<EpsgDatum> EpsgDatumsOf(const QuorvantDatum& datum);
