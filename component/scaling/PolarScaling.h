#pragma once

#include "component/scaling/Scaling.h"
#include "component/scaling/ScalingChecks.h"

/// A sheet whose meridians are straight lines that meet in an apex and whose parallels are arcs about it.
///
/// With the corners 1 upper left, 2 lower left, 3 upper right, 4 lower right, the apex is the intersection of
/// the lines 1-2 and 3-4. The angle about the apex, from the left meridian to the right one, runs evenly from
/// 0 to 1 and is called `across`; the radius runs evenly from 0 at the upper to 1 at the lower edge and is
/// called `down`, where the edges' radii are themselves blended by the angle, from those of corners 1 and 2
/// to those of corners 3 and 4.
///
/// The apex itself is never computed: it moves to infinity as the meridians become parallel. Lengths are
/// measured from corner 1 along and across the left meridian, and the apex enters as `curvature_`, one over
/// its signed distance from corner 1 (positive when it lies above), which passes smoothly through 0.
class PolarFrame {
public:
    /// A place as length of arc at corner 1's radius, rightwards, and as radius beyond corner 1's, downwards;
    /// both in pixels.
    struct Place {
        double arc = 0;
        double depth = 0;
    };
    /// A place as parts of the sheet.
    struct Parts {
        double across = 0;
        double down = 0;
    };

    /// Throws CornersImpossible.
    explicit PolarFrame(std::span<const ReferencePoint, 4> corners);

    /// Not finite where the upper and lower edges, continued, meet.
    Parts PartsAt(const Vector& pixel) const;
    /// Throws OutsideArea beyond the apex.
    Vector PixelAt(const Parts& parts) const;

private:
    Place PlaceAt(const Vector& pixel) const;

    Vector origin_;   ///< corner 1
    Vector downward_; ///< unit vector from corner 1 to corner 2
    double curvature_ = 0;
    double leftDepth_ = 0;  ///< depth of corner 2
    Place upperRight_;      ///< corner 3
    double rightDepth_ = 0; ///< depth of corner 4
};

/// The coordinates of a sheet's corners as a function of its parts. Where X is the same along each of the
/// two meridians and Y along each of the two parallels, as it is for a sheet of the usual kind, X depends on
/// `across` alone and Y on `down` alone; where it is not, the four values are blended bilinearly, so that
/// every corner comes out as it was given.
class CornerBlend {
public:
    /// Throws CornersImpossible for values that are equal where they must differ, or that fold the sheet.
    explicit CornerBlend(std::span<const ReferencePoint, 4> corners);

    WorldPosition At(const PolarFrame::Parts& parts) const;
    /// Throws OutsideArea where no part of the sheet's continuation has this coordinate.
    PolarFrame::Parts PartsOf(const WorldPosition& world) const;

private:
    Vector origin_; ///< corner 1
    Vector across_; ///< from corner 1 to corner 3
    Vector down_;   ///< from corner 1 to corner 2
    Vector twist_;  ///< what corner 4 lacks to a parallelogram
};
