#include "base/ComponentError.h"
#include "component/scaling/PolarScaling.h"

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>

namespace {

using FourCorners = std::span<const ReferencePoint, 4>;

[[noreturn]] void Impossible(const std::string& sentence) {
    throw ComponentError(ErrorNumber::CornersImpossible, sentence);
}

void RequireDistinctCorners(FourCorners corners) {
    for (std::size_t i = 0; i < corners.size(); ++i)
        for (std::size_t k = i + 1; k < corners.size(); ++k)
            if (!(Length(PixelOf(corners[i]) - PixelOf(corners[k])) > 0))
                Impossible("Corners " + std::to_string(i + 1) + " and " + std::to_string(k + 1) +
                           " are the same place on the map.");
}

bool SegmentsCross(const Vector& a, const Vector& b, const Vector& c, const Vector& d) {
    const auto oppositeSides = [](const Vector& from, const Vector& to, const Vector& p, const Vector& q) {
        return (Cross(to - from, p - from) > 0) != (Cross(to - from, q - from) > 0);
    };
    return oppositeSides(a, b, c, d) && oppositeSides(c, d, a, b);
}

/// The sheet must be a convex quadrilateral 1-2-4-3, turned or mirrored as it likes. Convex is just what
/// keeps the apex off both meridians between their corners.
void RequireSheet(FourCorners corners) {
    RequireDistinctCorners(corners);
    const std::array<Vector, 4> ring = {PixelOf(corners[0]), PixelOf(corners[1]), PixelOf(corners[3]),
                                        PixelOf(corners[2])};
    int turns = 0;
    bool flat = false;
    for (std::size_t i = 0; i < 4; ++i) {
        const Vector &before = ring[i], &at = ring[(i + 1) % 4], &after = ring[(i + 2) % 4];
        turns += Cross(at - before, after - at) > 0 ? 1 : -1;
        flat = flat || Flatness(before, at, after) < FlattestOnMap;
    }
    if (flat)
        Impossible("Three of the four corners lie on one line on the map.");
    if (SegmentsCross(ring[0], ring[1], ring[2], ring[3]) ||
        SegmentsCross(ring[1], ring[2], ring[3], ring[0]))
        Impossible(
            "The corners are crossed: they must be upper left, lower left, upper right, lower right, in "
            "this order.");
    if (turns != 4 && turns != -4)
        Impossible(
            "One corner lies inside the triangle of the other three, so that the meridians meet inside "
            "the sheet.");
}

/// sin(x) / x.
double SineOver(double x) {
    return std::abs(x) < 1e-8 ? 1.0 : std::sin(x) / x;
}

} // namespace

PolarFrame::PolarFrame(FourCorners corners) {
    RequireSheet(corners);
    const Vector upperLeft = PixelOf(corners[0]), upperRight = PixelOf(corners[2]);
    const Vector left = PixelOf(corners[1]) - upperLeft, right = PixelOf(corners[3]) - upperRight;
    origin_ = upperLeft;
    leftDepth_ = Length(left);
    downward_ = {left.x / leftDepth_, left.y / leftDepth_};
    // The apex lies s above corner 1, where cross(upperLeft - s·downward - upperRight, right) = 0.
    curvature_ = Cross(left, right) / leftDepth_ / Cross(upperLeft - upperRight, right);
    upperRight_ = PlaceAt(upperRight);
    rightDepth_ = PlaceAt(PixelOf(corners[3])).depth;
}

PolarFrame::Place PolarFrame::PlaceAt(const Vector& pixel) const {
    const Vector offset = pixel - origin_;
    const double along = Dot(downward_, offset), aside = Cross(downward_, offset);
    // Angle over curvature; and sqrt((s + along)² + aside²) - s, brought to a form without a difference.
    const double x = 1 + curvature_ * along, y = curvature_ * aside;
    const double arc = y == 0 && x > 0 ? aside / x : std::atan2(y, x) / curvature_;
    const double depth = (2 * along + curvature_ * (along * along + aside * aside)) / (1 + std::hypot(x, y));
    return {arc, depth};
}

PolarFrame::Parts PolarFrame::PartsAt(const Vector& pixel) const {
    const Place place = PlaceAt(pixel);
    const double across = place.arc / upperRight_.arc;
    const double upper = across * upperRight_.depth;
    const double lower = leftDepth_ + across * (rightDepth_ - leftDepth_);
    if (!(lower > upper))
        return {across, std::numeric_limits<double>::quiet_NaN()};
    return {across, (place.depth - upper) / (lower - upper)};
}

Vector PolarFrame::PixelAt(const Parts& parts) const {
    const double upper = parts.across * upperRight_.depth;
    const double lower = leftDepth_ + parts.across * (rightDepth_ - leftDepth_);
    const double depth = upper + parts.down * (lower - upper), arc = parts.across * upperRight_.arc;
    const double angle = curvature_ * arc;
    if (!(lower > upper) || !(std::abs(angle) <= std::numbers::pi) || !(1 + curvature_ * depth >= 0) ||
        !std::isfinite(depth))
        throw ComponentError(ErrorNumber::OutsideArea, "No pixel of the map has this coordinate.");
    const double aside = (1 + curvature_ * depth) * arc * SineOver(angle);
    const double along = depth * std::cos(angle) - arc * std::sin(angle / 2) * SineOver(angle / 2);
    return {origin_.x + along * downward_.x - aside * downward_.y,
            origin_.y + along * downward_.y + aside * downward_.x};
}
