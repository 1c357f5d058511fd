#pragma once

#include "coordinates/QuorvantDatum.h"

#include <array>
#include <cstdint>

/// Projection methods that are computed, the first integer of a grid. The numbers stand in library files and
/// never change; docs/atlavex-format.md reserves those that follow.
enum class ProjectionMethod : std::int32_t {
    None = 0,
    TransverseMercator = 1,
    LambertConformalConic = 2,
    ObliqueStereographic = 3,
    SwissObliqueMercator = 4,
    NewZealandMapGrid = 5,
    DanishSystem34 = 6,
};

/// Whether a method is one of those that the file format keeps room for and this program does not compute: a
/// map in it is kept and shown, its coordinates are not converted.
constexpr bool IsReserved(std::int32_t method) {
    return method > static_cast<std::int32_t>(ProjectionMethod::DanishSystem34);
}

/// The bare numbers of a projected grid: two integers and seven doubles.
struct GridNumbers {
    std::int32_t method = 0; ///< a ProjectionMethod
    /// For display and for DanishSystem34: UTM or strip number, state-plane code, 1-based place in a zone
    /// list, 0 where there is none. DanishSystem34: 0 chooses between Jutland and Zealand by position,
    /// 1 Jutland and Funen, 2 Zealand, 3 Bornholm.
    std::int32_t zone = 0;
    /// lat0, lon0 (degrees, Greenwich), k0, false easting, false northing (metres), standard parallels 1
    /// and 2 (degrees; 0 unless the method is LambertConformalConic).
    std::array<double, 7> values{};

    bool operator==(const GridNumbers&) const = default;
};

/// A projected grid together with the datum it is defined on.
class QuorvantGrid {
public:
    QuorvantGrid(const GridNumbers& numbers, const QuorvantDatum& datum) : numbers_(numbers), datum_(datum) {}

    const GridNumbers& AsNumbers() const { return numbers_; }
    const QuorvantDatum& Datum() const { return datum_; }
    bool operator==(const QuorvantGrid&) const = default;

private:
    GridNumbers numbers_;
    QuorvantDatum datum_;
};

/// The grid of an identifier of the catalogue (1 to 49 without 5, 8 and 46). `zone` is read for the grids
/// with a typed zone (1 to 60) and for the state-plane grids (the zone code as a number, 101 to 5202); all
/// others ignore it. Errors: UnknownGrid, UnknownZone.
QuorvantGrid MakeGrid(std::int16_t identifier, std::int32_t zone);
