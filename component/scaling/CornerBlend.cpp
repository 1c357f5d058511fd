#include "base/ComponentError.h"
#include "component/scaling/PolarScaling.h"

#include <array>
#include <cmath>
#include <string>

namespace {

using FourCorners = std::span<const ReferencePoint, 4>;

/// Corner numbers of two edges that must run the same way: from first to second, and from third to fourth.
struct Edges {
    std::size_t first, second, third, fourth;
    double ReferencePoint::*value;
    const char* name;
};

constexpr Edges LeftToRight{1, 3, 2, 4, &ReferencePoint::x, "longitude or easting"};
constexpr Edges TopToBottom{1, 2, 3, 4, &ReferencePoint::y, "latitude or northing"};

void RequireDifference(FourCorners corners, std::size_t from, std::size_t to, const Edges& edges) {
    if (corners[from - 1].*edges.value == corners[to - 1].*edges.value)
        throw ComponentError(ErrorNumber::CornersImpossible, "Corners " + std::to_string(from) + " and " +
                                                                 std::to_string(to) + " have the same " +
                                                                 edges.name + ".");
}

void RequireOneWay(FourCorners corners, const Edges& edges) {
    RequireDifference(corners, edges.first, edges.second, edges);
    RequireDifference(corners, edges.third, edges.fourth, edges);
    const auto value = [&](std::size_t corner) { return corners[corner - 1].*edges.value; };
    if ((value(edges.second) > value(edges.first)) != (value(edges.fourth) > value(edges.third)))
        throw ComponentError(ErrorNumber::CornersImpossible,
                             std::string("The ") + edges.name +
                                 " grows along one edge of the sheet and falls along "
                                 "the opposite one.");
}

/// The quadrilateral of the coordinates must be convex, else two places of the sheet have one coordinate.
void RequireUnfolded(FourCorners corners) {
    const std::array<Vector, 4> ring = {WorldOf(corners[0]), WorldOf(corners[1]), WorldOf(corners[3]),
                                        WorldOf(corners[2])};
    int turns = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const Vector &before = ring[i], &at = ring[(i + 1) % 4], &after = ring[(i + 2) % 4];
        const bool flat = Flatness(before, at, after) < FlattestInCoordinates;
        turns += flat ? 0 : Cross(at - before, after - at) > 0 ? 1 : -1;
    }
    if (turns != 4 && turns != -4)
        throw ComponentError(ErrorNumber::CornersImpossible,
                             "The coordinates of the four corners span no sheet.");
}

} // namespace

CornerBlend::CornerBlend(FourCorners corners) {
    RequireOneWay(corners, LeftToRight);
    RequireOneWay(corners, TopToBottom);
    RequireUnfolded(corners);
    origin_ = WorldOf(corners[0]);
    across_ = WorldOf(corners[2]) - origin_;
    down_ = WorldOf(corners[1]) - origin_;
    twist_ = (WorldOf(corners[3]) - WorldOf(corners[2])) - down_;
}

WorldPosition CornerBlend::At(const PolarFrame::Parts& parts) const {
    const auto [across, down] = parts;
    return {origin_.x + (across * across_.x + down * (down_.x + across * twist_.x)),
            origin_.y + (across * across_.y + down * (down_.y + across * twist_.y))};
}

PolarFrame::Parts CornerBlend::PartsOf(const WorldPosition& world) const {
    // offset - u·across is parallel to down + u·twist: a quadratic in u, solved for the root that tends to
    // the parallelogram's as the twist goes to nothing.
    const Vector offset = Vector{world.x, world.y} - origin_;
    const double area = Cross(across_, down_);
    const double constant = Cross(offset, down_);
    const double slope = area - Cross(offset, twist_), square = Cross(across_, twist_);
    const double root = std::copysign(std::sqrt(slope * slope + 4 * square * constant), area);
    const double u = 2 * constant / (slope + root);
    const Vector downThere{down_.x + u * twist_.x, down_.y + u * twist_.y};
    const Vector rest{offset.x - u * across_.x, offset.y - u * across_.y};
    const double v = Dot(rest, downThere) / Dot(downThere, downThere);
    if (!std::isfinite(u) || !std::isfinite(v))
        throw ComponentError(ErrorNumber::OutsideArea, "No pixel of the map has this coordinate.");
    return {u, v};
}
