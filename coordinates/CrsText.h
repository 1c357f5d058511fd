#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <cstdint>
#include <optional>
#include <string>

/// A coordinate reference system as other programs take it.
struct CrsText {
    /// WKT 2:2019: projected where there is a grid, else geographic. A datum with a shift is bound to WGS84
    /// by its seven parameters, one without is left as it is. Empty where there is no such text: for System
    /// 34 and System 45, for numbers that describe no system, and where PROJ cannot make one.
    std::string wkt;
    /// "ED50 / UTM zone 32N" as the EPSG registry has it, else what the catalogue calls it; "Custom grid" or
    /// "Custom datum" for numbers that are of neither. Stands in the WKT.
    std::string name;
    /// The code of the EPSG registry; 0 where the numbers are those of none, or of several. Stands in the
    /// WKT, too.
    int epsg = 0;
    /// The WKT's axes are northing, easting or latitude, longitude, as the registry has them for this code;
    /// otherwise, and without a code always, easting, northing or longitude, latitude. Metres or degrees.
    bool northFirst = false;
};

/// The same where nobody knows the shift to WGS84: the datum's ellipsoid alone, bound to nothing and with no
/// code, as its numbers are those of many datums. `name` is what it is said to be, or empty.
CrsText DescribeUnboundCrs(const QuorvantDatum& datum, const std::optional<GridNumbers>& grid,
                           const std::string& name);

/// `gridIdentifier` is what the grid was chosen by, 0 where only its numbers are known. Needs no proj.db.
CrsText DescribeCrs(const QuorvantDatum& datum, const std::optional<GridNumbers>& grid,
                    std::int32_t gridIdentifier = 0);
