#pragma once

#include "component/Georeference.h"

#include <cmath>
#include <span>
#include <string_view>

// What linear and polar scaling ask of the points they are given.

/// a·b − c·d with one rounding more than a single product: the product that is rounded away first is put back
/// by a fused multiply-add, so that nearly equal products do not cancel to noise.
inline double DifferenceOfProducts(double a, double b, double c, double d) {
    const double cd = c * d;
    const double lost = std::fma(-c, d, cd);
    return std::fma(a, b, -cd) + lost;
}

/// A vector in pixels or in coordinates.
struct Vector {
    double x = 0;
    double y = 0;
};

inline Vector operator-(const Vector& a, const Vector& b) {
    return {a.x - b.x, a.y - b.y};
}
inline double Length(const Vector& v) {
    return std::hypot(v.x, v.y);
}
inline double Dot(const Vector& a, const Vector& b) {
    return DifferenceOfProducts(a.x, b.x, -a.y, b.y);
}
/// Positive where b lies clockwise of a on the screen (y points down).
inline double Cross(const Vector& a, const Vector& b) {
    return DifferenceOfProducts(a.x, b.y, a.y, b.x);
}

inline Vector PixelOf(const ReferencePoint& point) {
    return {static_cast<double>(point.pixelX), static_cast<double>(point.pixelY)};
}
inline Vector WorldOf(const ReferencePoint& point) {
    return {point.x, point.y};
}

/// Height of the triangle a, b, c over its longest side, as a part of that side: 0 for three points on one
/// line, at most 0.87.
double Flatness(const Vector& a, const Vector& b, const Vector& c);

/// Flattest triangle that is accepted on the map: one pixel high on ten thousand. A click is only good to
/// half a pixel, so a flatter triangle says nothing about the direction across its longest side.
inline constexpr double FlattestOnMap = 1e-4;

/// Flattest triangle that is accepted in coordinates, where the values are typed and may be exact. A flatter
/// one would cost the way back from coordinates to pixels more than six of its sixteen digits.
inline constexpr double FlattestInCoordinates = 1e-6;

/// Throws ValueNotFinite, naming the point ("point" or "corner" and its number) and X or Y, for a value that
/// is not finite, or so large that differences of such values leave the range of a double.
void RequireUsableValues(std::span<const ReferencePoint> points, std::string_view word);
