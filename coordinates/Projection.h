#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <memory>

/// Longitude and latitude in signed decimal degrees from Greenwich, east and north positive. Results have a
/// longitude within ±180 degrees; a longitude given may lie within ±360.
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
    /// The datum gives the ellipsoid (the New Zealand Map Grid and the Danish systems exist on International
    /// 1924 only and use that one whatever the datum). Throws UnknownGrid for numbers that describe no
    /// projection, UnknownZone for a Danish system that there is not, UnknownDatum for an ellipsoid that is
    /// none, ValueNotFinite for numbers that are none.
    GridProjection(const GridNumbers& grid, const QuorvantDatum& datum);
    ~GridProjection();
    GridProjection(GridProjection&&) noexcept;
    GridProjection& operator=(GridProjection&&) noexcept;

    /// Both throw OutsideArea where the grid is not defined: where its formula fails or does not lead back to
    /// where it started, beyond ±90 degrees of latitude or ±360 of longitude, and for values not finite.
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
    /// Throws ValueNotFinite for numbers that are none, UnknownDatum for an ellipsoid that is none.
    explicit DatumShift(const QuorvantDatum& datum);
    ~DatumShift();
    DatumShift(DatumShift&&) noexcept;
    DatumShift& operator=(DatumShift&&) noexcept;

    /// Throws OutsideArea for a latitude beyond ±90, a longitude beyond ±360 degrees or a value that is not
    /// finite.
    LonLat ToWgs84(const LonLat& position) const;
    LonLat FromWgs84(const LonLat& position) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};
