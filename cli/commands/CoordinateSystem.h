#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <cstdint>
#include <string>

// Grids and datums between the texts of the catalogue and their numbers.

/// A grid as a map keeps it.
struct NamedGrid {
    std::int16_t identifier = 0;
    std::string zone; ///< for display: a decimal string, empty where the grid has none
    QuorvantGrid grid;
};

/// The grid of a catalogue text ("UTM (etrs89)") and a zone: a number ("32", "4204") or the zone's text in
/// the catalogue ("M31"). Throws UnknownGrid or UnknownZone.
NamedGrid GridByName(const std::string& grid, const std::string& zone);

/// The datum of a catalogue text ("ED50"). Throws UnknownDatum.
QuorvantDatum DatumByName(const std::string& datum);
