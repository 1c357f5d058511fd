#pragma once

#include "component/Georeference.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What is unlikely in a scaling. A scaling that can be computed may still be wrong: a minus forgotten, two
// columns exchanged, feet typed for metres. None of this is certain, so nothing here refuses anything; what
// is said is meant to be looked at by somebody who has the map before him.

/// Why a scaling is doubted.
enum class ScalingDoubt : std::uint8_t {
    Mirrored,      ///< the map would be read from its back
    SwappedAxes,   ///< northings or latitudes where eastings or longitudes belong
    FeetForMetres, ///< 0.3048 times the coordinates would lie in the grid's area
    MetresForFeet, ///< the coordinates divided by 0.3048 would
    Hemisphere,    ///< with the other sign, or the other false northing, the map would lie in the area
    FarAway,       ///< the map lies far from the grid's zone or the datum's area
    ScaleRatio,    ///< a pixel is much longer one way than the other
    Shear,         ///< the map's rows and columns do not meet at right angles on the ground
    PointsNear,    ///< the points cover a small part of the map
    PointsOnLine,  ///< the points are nearly on one line
};

/// As programs read it: "mirrored", "swapped-axes", "feet-for-metres", "metres-for-feet", "hemisphere",
/// "far-away", "scale-ratio", "shear", "points-near", "points-on-line".
std::string_view NameOf(ScalingDoubt doubt);

struct ScalingRemark {
    ScalingDoubt doubt{};
    std::string sentence;
};

/// What is unlikely in the scaling of a map of this size in pixels, the gravest first; nothing for a map
/// without one. Maps turned by any angle, sheets whose meridians converge and maps of half the earth are
/// likely; so the bounds are these:
/// - Far: 700 km beyond the area of the grid or datum in the EPSG registry (where it has no code: beyond
/// three
///   degrees of the central meridian). Whole countries are mapped in the zone of their middle, and a zone of
///   six degrees serves its neighbours: the north-east of Norway lies 500 km beyond the zone that the country
///   uses.
/// - Feet: 100 km beyond an area less than 20 degrees high, or far beyond any other, and right with 0.3048.
/// - Scale ratio: 1.1 with a grid. Paper shrinks by three percent, fax machines scan 4 % apart. In
/// degrees 1.25
///   beyond what lies between a map of equal degrees and one of equal metres.
/// - Shear: 3 degrees with a grid. In degrees 10: meridians converge on a conic map of a large country.
/// - Points near: less than a tenth of the map's sides apart, so that half a pixel in a point becomes five at
/// the
///   map's edge. Points on a line: the triangle is less than a twentieth as high as long, each side of the
///   map taken as one. Points that stand for a worldfile are exact and pass.
std::vector<ScalingRemark> ReviewScaling(const Georeference& georeference, std::int32_t width,
                                         std::int32_t height);
