#include "base/ComponentError.h"
#include "component/scaling/Scaling.h"
#include "component/scaling/ScalingChecks.h"

#include <algorithm>
#include <string>

namespace {

using ThreePoints = std::span<const ReferencePoint, 3>;

/// A 2×2 matrix: first row takes to X, second to Y.
struct Matrix {
    double xx = 0, xy = 0;
    double yx = 0, yy = 0;

    bool IsFinite() const {
        return std::isfinite(xx) && std::isfinite(xy) && std::isfinite(yx) && std::isfinite(yy);
    }
    Vector Apply(const Vector& v) const {
        return {DifferenceOfProducts(xx, v.x, -xy, v.y), DifferenceOfProducts(yx, v.x, -yy, v.y)};
    }
};

/// The linear map that takes the vectors u, v to s, t.
Matrix Solve(const Vector& u, const Vector& v, const Vector& s, const Vector& t) {
    const double area = Cross(u, v);
    return {DifferenceOfProducts(s.x, v.y, t.x, u.y) / area, DifferenceOfProducts(t.x, u.x, s.x, v.x) / area,
            DifferenceOfProducts(s.y, v.y, t.y, u.y) / area, DifferenceOfProducts(t.y, u.x, s.y, v.x) / area};
}

Vector Centroid(const Vector& a, const Vector& b, const Vector& c) {
    // Differences first: the mean of three large, close values then keeps all its digits.
    return {a.x + ((b.x - a.x) + (c.x - a.x)) / 3, a.y + ((b.y - a.y) + (c.y - a.y)) / 3};
}

std::string Pair(int first, int second) {
    return "Points " + std::to_string(first) + " and " + std::to_string(second);
}

template <typename Place>
void RequireDistinct(ThreePoints points, Place place, const char* fault) {
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t next = (i + 1) % 3;
        if (Length(place(points[i]) - place(points[next])) > 0)
            continue;
        const auto low = static_cast<int>(std::min(i, next)), high = static_cast<int>(std::max(i, next));
        throw ComponentError(ErrorNumber::PointsOnALine, Pair(low + 1, high + 1) + fault);
    }
}

template <typename Place>
void RequireTriangle(ThreePoints points, Place place, double flattest, const char* fault) {
    if (!(Flatness(place(points[0]), place(points[1]), place(points[2])) >= flattest))
        throw ComponentError(ErrorNumber::PointsOnALine, fault);
}

void RequireUsablePoints(ThreePoints points) {
    RequireUsableValues(points, "point");
    RequireDistinct(points, PixelOf, " are the same place on the map.");
    RequireDistinct(points, WorldOf, " have the same coordinates.");
    RequireTriangle(points, PixelOf, FlattestOnMap, "The three points lie on one line on the map.");
    RequireTriangle(points, WorldOf, FlattestInCoordinates,
                    "The coordinates of the three points lie on one line.");
}

/// Works on differences from the centroid of the points, so that large offsets (northings of some 6 000 km)
/// cost no digits.
class LinearScaling : public Scaling {
public:
    explicit LinearScaling(ThreePoints points)
        : pixelCentre_(Centroid(PixelOf(points[0]), PixelOf(points[1]), PixelOf(points[2]))),
          worldCentre_(Centroid(WorldOf(points[0]), WorldOf(points[1]), WorldOf(points[2]))) {
        const Vector u = PixelOf(points[1]) - PixelOf(points[0]), v = PixelOf(points[2]) - PixelOf(points[0]);
        const Vector s = WorldOf(points[1]) - WorldOf(points[0]), t = WorldOf(points[2]) - WorldOf(points[0]);
        toWorld_ = Solve(u, v, s, t);
        toPixel_ = Solve(s, t, u, v);
        if (!toWorld_.IsFinite() || !toPixel_.IsFinite())
            throw ComponentError(ErrorNumber::PointsOnALine,
                                 "The coordinates of the three points are too close together.");
    }

    WorldPosition PixelToWorld(const PixelPosition& pixel) const override {
        const Vector offset = toWorld_.Apply(Vector{pixel.x, pixel.y} - pixelCentre_);
        return {worldCentre_.x + offset.x, worldCentre_.y + offset.y};
    }

    PixelPosition WorldToPixel(const WorldPosition& world) const override {
        const Vector offset = toPixel_.Apply(Vector{world.x, world.y} - worldCentre_);
        const PixelPosition pixel{pixelCentre_.x + offset.x, pixelCentre_.y + offset.y};
        if (!std::isfinite(pixel.x) || !std::isfinite(pixel.y))
            throw ComponentError(ErrorNumber::OutsideArea, "No pixel of the map has this coordinate.");
        return pixel;
    }

    Affine AsAffine() const {
        const WorldPosition origin = PixelToWorld({0, 0});
        return {toWorld_.xx, toWorld_.xy, origin.x, toWorld_.yx, toWorld_.yy, origin.y};
    }

private:
    Vector pixelCentre_;
    Vector worldCentre_;
    Matrix toWorld_;
    Matrix toPixel_;
};

} // namespace

std::unique_ptr<Scaling> MakeLinearScaling(ThreePoints points) {
    RequireUsablePoints(points);
    return std::make_unique<LinearScaling>(points);
}

Affine AffineOf(ThreePoints points) {
    RequireUsablePoints(points);
    return LinearScaling(points).AsAffine();
}
