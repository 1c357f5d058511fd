#pragma once

#include "coordinates/ProjTransform.h"
#include "coordinates/Projection.h"

/// A grid that one formula describes.
class PlaneProjection {
public:
    /// Throws UnknownGrid for numbers that describe no projection. They must be finite.
    PlaneProjection(const GridNumbers& grid, const QuorvantDatum& datum);

    /// Both throw OutsideArea where the formula is not defined or does not lead back to where it started.
    EastNorth Forward(const LonLat& position) const;
    LonLat Inverse(const EastNorth& position) const;

private:
    ProjTransform transform_; ///< longitude/latitude in degrees to metres
};
