#pragma once

#include "coordinates/QuorvantGrid.h"

// Makes the rows of the fixed tables, so that each row shows only the numbers that its method has.

/// Degrees and minutes as decimal degrees, without sign.
constexpr double Dm(int degrees, int minutes) {
    return degrees + minutes / 60.0;
}

/// Degrees, minutes and seconds as decimal degrees, without sign.
constexpr double Dms(int degrees, int minutes, double seconds) {
    return degrees + (minutes * 60 + seconds) / 3600.0;
}

constexpr GridNumbers TransverseMercatorGrid(std::int32_t zone, double lat0, double lon0, double k0,
                                             double falseEasting, double falseNorthing) {
    return {static_cast<std::int32_t>(ProjectionMethod::TransverseMercator),
            zone,
            {lat0, lon0, k0, falseEasting, falseNorthing, 0, 0}};
}

/// `k0` is 1 for two standard parallels, and the scale on the parallel when both parallels are the same.
constexpr GridNumbers LambertGrid(std::int32_t zone, double lat0, double lon0, double parallel1,
                                  double parallel2, double k0, double falseEasting, double falseNorthing) {
    return {static_cast<std::int32_t>(ProjectionMethod::LambertConformalConic),
            zone,
            {lat0, lon0, k0, falseEasting, falseNorthing, parallel1, parallel2}};
}

/// Methods without standard parallels that have no zones.
constexpr GridNumbers SingleGrid(ProjectionMethod method, double lat0, double lon0, double k0,
                                 double falseEasting, double falseNorthing) {
    return {static_cast<std::int32_t>(method), 0, {lat0, lon0, k0, falseEasting, falseNorthing, 0, 0}};
}

/// The Danish systems have no closed formula: the zone alone says which polynomials apply.
constexpr GridNumbers DanishGrid(std::int32_t zone) {
    return {static_cast<std::int32_t>(ProjectionMethod::DanishSystem34), zone, {}};
}
