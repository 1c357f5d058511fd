#pragma once

#include <cstdint>

// How the coordinate lines run on a map, as the wizard's steps hand it on.

inline constexpr std::int16_t CartesianProjection = 1; ///< scaled by three points; shown as "Linear"
inline constexpr std::int16_t PolarProjection = 2;     ///< scaled by four corners

/// The number of reference points.
constexpr std::int16_t PointsFor(std::int16_t projection) {
    return projection == PolarProjection ? 4 : 3;
}
