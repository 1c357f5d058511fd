#pragma once

#include "component/Georeference.h"

#include <array>
#include <memory>
#include <span>

/// Turns pixels into coordinates and back.
class Scaling {
public:
    virtual ~Scaling() = default;
    /// Defined outside the map too; not finite where a polar sheet's continued edges meet.
    virtual WorldPosition PixelToWorld(const PixelPosition& pixel) const = 0;
    /// Throws OutsideArea where no pixel has this coordinate.
    virtual PixelPosition WorldToPixel(const WorldPosition& world) const = 0;
};

/// The affine map through three points, solved about their centroid. Throws PointsOnALine for points that
/// are (nearly) on one line or coincide, in pixels or in coordinates, and ValueNotFinite; the sentence says
/// which.
std::unique_ptr<Scaling> MakeLinearScaling(std::span<const ReferencePoint, 3> points);

/// The polar map through four corners (upper left, lower left, upper right, lower right): meridians are
/// straight lines that meet in the apex, parallels are arcs about it; parallel meridians are the case of an
/// apex at infinity. X is expected to be equal along each meridian and Y along each parallel; where they
/// differ, the values are blended bilinearly so that every corner comes out as given. The sheet may be turned
/// or mirrored. Longitudes run on beyond ±180 where a sheet crosses that meridian (179 to 181, not -179).
/// Throws CornersImpossible for corners that are crossed, span no area, or have equal values where they must
/// differ, and ValueNotFinite.
std::unique_ptr<Scaling> MakePolarScaling(std::span<const ReferencePoint, 4> corners);

/// The scaling that a georeference describes; nothing for ScalingKind::None. Throws as above.
std::unique_ptr<Scaling> MakeScaling(const Georeference& georeference);

/// The affine map of a linear scaling (for a geotransform or a worldfile).
Affine AffineOf(std::span<const ReferencePoint, 3> points);
