#pragma once

#include "catalogue/GridChoice.h"
#include "component/AtlavexMap.h"

#include <optional>
#include <string>

// Grids and datums between the texts of the catalogue and their numbers.

/// The grid of a catalogue text ("UTM (etrs89)") and a zone: a number ("32", "4204") or the zone's text in
/// the catalogue ("M31"). Throws UnknownGrid or UnknownZone.
GridChoice GridByName(const std::string& grid, const std::string& zone);

/// The datum of a catalogue text ("ED50"). Throws UnknownDatum.
QuorvantDatum DatumByName(const std::string& datum);

/// The arguments that name a coordinate system, as typed: a grid, with a zone where it has zones, or a datum.
struct SystemOptions {
    std::string grid;
    std::string zone;
    std::string datum;

    bool Given() const { return !(grid.empty() && zone.empty() && datum.empty()); }
};

/// Throws UsageError unless there is either a grid or a datum; `needer` begins the sentence ("A scaling").
void CheckSystemChoice(const SystemOptions& options, const std::string& needer);

/// What the coordinates of a map's reference points mean.
class CoordinateSystem {
public:
    /// The options were checked. Throws what GridByName and DatumByName throw.
    explicit CoordinateSystem(const SystemOptions& options);

    bool HasGrid() const { return grid_.has_value(); }
    /// Gives the map its datum and, where there is one, its grid with identifier and zone; a scaling that
    /// follows takes them.
    void ApplyTo(AtlavexMap& map) const;

private:
    std::optional<GridChoice> grid_;
    QuorvantDatum datum_;
};
