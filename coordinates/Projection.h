#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <memory>

/// Longitude and latitude in signed decimal degrees from Greenwich, east and north positive.
struct LonLat {
    double longitude = 0;
    double latitude = 0;
};

/// Easting and northing in metres.
struct EastNorth {
    double easting = 0;
    double northing = 0;
};

/// Converts between longitude/latitude on a datum's ellipsoid and a grid's easting/northing. No datum shift,
/// except inside DanishSystem34, whose polynomials are defined on UTM zone 32 of the same datum.
/// Not for use by two threads at once.
class GridProjection {
public:
    /// The datum gives the ellipsoid. Throws UnknownGrid for numbers that describe no projection,
    /// ValueNotFinite for numbers that are none.
    GridProjection(const GridNumbers& grid, const QuorvantDatum& datum);
    ~GridProjection();
    GridProjection(GridProjection&&) noexcept;
    GridProjection& operator=(GridProjection&&) noexcept;

    /// Throws OutsideArea where the grid is not defined.
    EastNorth Forward(const LonLat& position) const;
    LonLat Inverse(const EastNorth& position) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Converts longitude/latitude between a datum and WGS84 (seven parameters in their small-angle form,
/// height 0 on the input side, resulting height dropped). Not for use by two threads at once.
class DatumShift {
public:
    explicit DatumShift(const QuorvantDatum& datum);
    ~DatumShift();
    DatumShift(DatumShift&&) noexcept;
    DatumShift& operator=(DatumShift&&) noexcept;

    /// Throws OutsideArea for a latitude beyond ±90 degrees or a value that is not finite.
    LonLat ToWgs84(const LonLat& position) const;
    LonLat FromWgs84(const LonLat& position) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};
