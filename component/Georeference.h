#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// A place in a map's pixels; whole numbers are pixel centres.
struct PixelPosition {
    double x = 0;
    double y = 0;
};

/// A place in a map's own coordinates: longitude/latitude in degrees or easting/northing in metres.
struct WorldPosition {
    double x = 0;
    double y = 0;
};

/// A place on the map whose coordinate is known. X is the longitude in decimal degrees (east positive) or
/// the easting in metres, Y the latitude (north positive) or the northing. The integer pixel (x, y) is the
/// centre of that pixel, counted from 0 at the upper left, without zoom.
struct ReferencePoint {
    double x = 0;
    double y = 0;
    std::int32_t pixelX = 0;
    std::int32_t pixelY = 0;

    bool operator==(const ReferencePoint&) const = default;
};

/// A place whose coordinate is known, as it was entered or measured: as a ReferencePoint, but the pixel may
/// be a part of one, and somebody may have given it a name.
struct MeasuredPoint {
    double x = 0;
    double y = 0;
    double pixelX = 0;
    double pixelY = 0;
    std::string label;

    bool operator==(const MeasuredPoint&) const = default;
};

/// Points that no scaling was made from, to compare it with.
struct CheckSet {
    std::string name;
    std::vector<MeasuredPoint> points;

    bool operator==(const CheckSet&) const = default;
};

/// What a registry calls a map's coordinate system and the shift to WGS84 whose numbers its datum has. All
/// texts may be empty: nobody said.
struct SystemIdentity {
    std::string code; ///< "EPSG:25832"
    std::string name; ///< "ETRS89 / UTM zone 32N"
    std::string shiftCode;
    std::string shiftName;
    double shiftAccuracy = 0; ///< metres; 0 where it is not known
    /// Nobody knows the way to WGS84: the datum is an ellipsoid alone, its seven other numbers are 0 and no
    /// shift is named. Without this flag zeros mean a datum that does not differ from WGS84.
    bool shiftUnknown = false;

    bool operator==(const SystemIdentity&) const = default;
};

/// A map has at most so many points as entered, and each of its check sets so many.
inline constexpr std::size_t MostMeasuredPoints = 65536;
inline constexpr std::size_t MostCheckSets = 256;

/// An affine map as six numbers: X = a·px + b·py + c, Y = d·px + e·py + f.
struct Affine {
    double a = 0, b = 0, c = 0;
    double d = 0, e = 0, f = 0;
};

/// How pixels become coordinates. The numbers stand in library files and never change.
enum class ScalingKind : std::uint8_t {
    None = 0,
    Linear = 1, ///< affine, through three points
    Polar = 2,  ///< four corners: upper left, lower left, upper right, lower right
};

/// Everything that ties a map to the earth, as it was given: stored with the map so that a later edit can
/// show it.
struct Georeference {
    std::optional<QuorvantDatum> datum;
    std::optional<GridNumbers> grid; ///< set: coordinates are easting/northing; else longitude/latitude
    std::int32_t gridIdentifier = 0; ///< the catalogue's identifier where one is known, else 0
    std::string zone;                ///< the zone as a decimal string, empty where there is none
    ScalingKind kind = ScalingKind::None;
    std::vector<ReferencePoint> points; ///< three for Linear, four for Polar
    SystemIdentity system;              ///< of the datum and the grid
    /// What the scaling was made from, where that is not `points` themselves.
    std::vector<MeasuredPoint> entered;
    std::vector<CheckSet> checks;

    bool operator==(const Georeference&) const = default;
};

/// Throws what taking these points as a map's scaling would: PointsOnALine, CornersImpossible,
/// ValueNotFinite; InvalidArgument for another number of points than the kind has (three, four), or for
/// ScalingKind::None.
void CheckScaling(ScalingKind kind, std::span<const ReferencePoint> points);
