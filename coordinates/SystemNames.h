#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What a coordinate system that is kept as numbers is called in the catalogue.

/// A grid of the catalogue, one of its zones where it has them.
struct GridFit {
    std::int16_t identifier = 0;
    std::int32_t zone = 0; ///< see GridZone

    bool operator==(const GridFit&) const = default;
};

/// The catalogue's text of an identifier ("UTM (ed50)", "ED50"); empty for an identifier that is in no list.
std::string_view GridText(std::int32_t identifier);
std::string_view DatumText(std::int32_t identifier);

/// The typed zone, the state-plane code or the 1-based place in a zone list; 0 for a grid without zones.
std::int32_t GridZone(const GridNumbers& grid);

/// The same as text, empty for none; where the numbers have no zone, the `zone` that was kept with them.
std::string ZoneText(const GridNumbers& grid, const std::string& zone);

/// Every grid of the catalogue whose numbers and own datum are exactly these; zone is for display and does
/// not count.
std::vector<GridFit> FittingGrids(const GridNumbers& grid, const QuorvantDatum& datum);

/// Every datum of the catalogue with exactly these numbers, by identifier.
std::vector<std::int16_t> FittingDatums(const QuorvantDatum& datum);

/// The names of a system, one in most cases; several where nothing but the numbers decides and they fit
/// several, none where they fit nothing.
struct SystemNames {
    std::vector<GridFit> grids;
    std::vector<std::int16_t> datums;

    /// "UTM (etrs89)"; with zones, "UTM (etrs89) zone 15 or UTM (nad83) zone 15", where there are several.
    std::string GridName() const;
    std::vector<std::string> GridNames() const;
    /// "ETRS89, GDA94, NZGD2000 or NAD83".
    std::string DatumName() const;
    std::vector<std::string> DatumNames() const;
};

/// `gridIdentifier` is what the grid was chosen by, 0 for one that is not of the catalogue: that one is
/// looked up by its numbers. A datum is the grid's own where that has its numbers, else looked up.
SystemNames NamesOf(const std::optional<QuorvantDatum>& datum, const std::optional<GridNumbers>& grid,
                    std::int32_t gridIdentifier);

/// "A", "A or B", "A, B or C"; empty for none.
std::string JoinNames(const std::vector<std::string>& names);
