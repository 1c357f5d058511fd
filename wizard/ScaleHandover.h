#pragma once

#include "component/AtlavexMap.h"
#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <array>
#include <cstdint>
#include <functional>

class QWidget;

/// The reference points of a wizard run, numbered from 1; place 0 is not used. X is the longitude in decimal
/// degrees or the easting in metres, Y the latitude or the northing; pixels are unzoomed.
struct WizardPoints {
    static constexpr std::size_t Places = 5;
    std::array<double, Places> x{};
    std::array<double, Places> y{};
    std::array<double, Places> pixelX{};
    std::array<double, Places> pixelY{};

    /// With the pixel rounded half to even; ErrorNumber::Overflow.
    ReferencePoint At(std::int16_t number) const;
};

// The calls that hand a coordinate system and its reference points to a map, each in the order the map needs.
// All throw what the map throws; what follows a failure is not called.

void HandOverDatum(AtlavexMap& map, const QuorvantDatum& datum);
/// A grid with what it is called: its identifier in the catalogue (0 for one of another program) and its
/// zone, then the grid's own datum, then the grid.
void HandOverGrid(AtlavexMap& map, std::int16_t gridIdentifier, std::int16_t zone, const QuorvantGrid& grid);
/// Three points for projection 1 (Cartesian), four corners for 2 (Polar), nothing for any other.
void HandOverPoints(AtlavexMap& map, std::int16_t projection, const WizardPoints& points);

/// Makes the calls of one run. Whatever fails in them leaves the map's georeference as it was and is told
/// before `parent`: "Invalid scaling: " and the reason. Whether nothing failed.
bool RunHandOver(QWidget* parent, AtlavexMap& map, const std::function<void()>& calls);
