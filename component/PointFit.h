#pragma once

#include "component/Georeference.h"

#include <array>
#include <span>
#include <vector>

/// The affine map that fits points best: the sum of the squares of what X is off is least, and so is that of
/// Y. Given as three of its points at whole pixels, well apart, which a linear scaling takes. InvalidArgument
/// for fewer than three points or a pixel that no map has, ValueNotFinite, PointsOnALine.
std::array<ReferencePoint, 3> FitAffine(std::span<const MeasuredPoint> points);

/// How far a measured point is from where a scaling puts it.
struct Residual {
    double right = 0; ///< pixels from the measured one to that which the scaling gives the coordinate
    double down = 0;
    double pixels = 0; ///< the length of both
    /// From the measured coordinate to that of the measured pixel; on the datum's ellipsoid there for a map
    /// in degrees. Not finite where a polar scaling is not defined at the pixel.
    double metres = 0;
};

/// Of each point, in their order. MapNotScaled; OutsideArea where no pixel has a point's coordinate.
std::vector<Residual> ResidualsOf(const Georeference& georeference, std::span<const MeasuredPoint> points);
