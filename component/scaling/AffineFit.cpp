#include "base/ComponentError.h"
#include "component/PointFit.h"
#include "component/scaling/ScalingChecks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

using Column = std::vector<double>;

/// Whole numbers of pixels, and how far the three points are apart at the most: any two fit in between.
constexpr double SmallestPixel = std::numeric_limits<std::int32_t>::min();
constexpr double LargestPixel = std::numeric_limits<std::int32_t>::max();
constexpr double LongestSide = 1 << 30;

double Dot(const Column& a, const Column& b) {
    return std::transform_reduce(a.begin(), a.end(), b.begin(), 0.0);
}

/// a − factor·b.
Column Less(Column a, double factor, const Column& b) {
    std::transform(a.begin(), a.end(), b.begin(), a.begin(),
                   [factor](double x, double y) { return x - factor * y; });
    return a;
}

/// One number of every point as offsets from their mean: large values that differ little keep their digits.
struct Centred {
    double mean = 0;
    Column offsets;

    Centred(std::span<const MeasuredPoint> points, double MeasuredPoint::*number) {
        const double first = points.front().*number;
        for (const MeasuredPoint& point : points)
            mean += (point.*number - first) / static_cast<double>(points.size());
        mean += first;
        for (const MeasuredPoint& point : points)
            offsets.push_back(point.*number - mean);
    }
};

/// Two columns as an orthonormal pair times a triangle, by Gram and Schmidt's way as it is stable. The normal
/// equations would square how badly a narrow strip of points is conditioned, and lose twice the digits.
class TwoColumns {
public:
    TwoColumns(const Column& first, const Column& second)
        : first_(first), length_(std::sqrt(Dot(first, first))) {
        if (length_ > 0)
            for (double& value : first_)
                value /= length_;
        along_ = Dot(first_, second);
        second_ = Less(second, along_, first_);
        const double left = Dot(first_, second_); // once more: what rounding has left of the first
        second_ = Less(second_, left, first_);
        along_ += left;
        across_ = std::sqrt(Dot(second_, second_));
    }

    /// The smaller of the two singular values over the larger: 0 for points on one line, 1 for a round cloud.
    double Flatness() const {
        const double product = length_ * across_;
        const double sum = length_ * length_ + along_ * along_ + across_ * across_;
        const double largest = (sum + std::sqrt(std::max(0.0, sum * sum - 4 * product * product))) / 2;
        return largest > 0 ? product / largest : 0;
    }

    /// The factors of both columns that come nearest to the values.
    Vector Solve(const Column& values) const {
        const double onFirst = Dot(first_, values);
        const double second = Dot(second_, Less(values, onFirst, first_)) / (across_ * across_);
        return {(onFirst - along_ * second) / length_, second};
    }

private:
    Column first_; ///< of length 1
    Column second_;
    double length_ = 0, along_ = 0, across_ = 0;
};

void RequireUsable(std::span<const MeasuredPoint> points) {
    if (points.size() < 3)
        throw ComponentError(ErrorNumber::InvalidArgument, "A scaling needs at least three points.");
    std::vector<ReferencePoint> values;
    for (const MeasuredPoint& point : points) {
        values.push_back({point.x, point.y, 0, 0});
        for (const double pixel : {point.pixelX, point.pixelY})
            if (!(pixel >= SmallestPixel && pixel <= LargestPixel))
                throw ComponentError(ErrorNumber::InvalidArgument,
                                     "Point " + std::to_string(values.size()) + " is at no pixel of a map.");
    }
    RequireUsableValues(values, "point");
}

void RequireSpread(const TwoColumns& columns, double flattest, const char* fault) {
    if (!(columns.Flatness() >= flattest))
        throw ComponentError(ErrorNumber::PointsOnALine, fault);
}

/// The first of the whole pixels from `from` on that leaves room for the side.
std::int32_t Start(const Column& offsets, double mean, double side) {
    const double from = std::floor(mean + *std::ranges::min_element(offsets));
    return static_cast<std::int32_t>(std::clamp(from, SmallestPixel, LargestPixel - side));
}

double Extent(const Column& offsets) {
    const auto [least, most] = std::ranges::minmax(offsets);
    return most - least;
}

} // namespace

std::array<ReferencePoint, 3> FitAffine(std::span<const MeasuredPoint> points) {
    RequireUsable(points);
    const Centred px(points, &MeasuredPoint::pixelX), py(points, &MeasuredPoint::pixelY);
    const Centred x(points, &MeasuredPoint::x), y(points, &MeasuredPoint::y);
    const TwoColumns pixels(px.offsets, py.offsets);
    RequireSpread(pixels, FlattestOnMap, "The points lie on one line on the map.");
    RequireSpread(TwoColumns(x.offsets, y.offsets), FlattestInCoordinates,
                  "The coordinates of the points lie on one line.");
    const Vector toX = pixels.Solve(x.offsets), toY = pixels.Solve(y.offsets);
    const double side =
        std::clamp(std::ceil(std::max(Extent(px.offsets), Extent(py.offsets))), 1.0, LongestSide);
    const std::int32_t left = Start(px.offsets, px.mean, side), top = Start(py.offsets, py.mean, side);
    const auto right = static_cast<std::int32_t>(left + side), bottom = static_cast<std::int32_t>(top + side);
    const auto at = [&](std::int32_t column, std::int32_t row) {
        const Vector offset{column - px.mean, row - py.mean};
        return ReferencePoint{x.mean + ::Dot(toX, offset), y.mean + ::Dot(toY, offset), column, row};
    };
    const std::array<ReferencePoint, 3> fitted{at(left, top), at(left, bottom), at(right, bottom)};
    CheckScaling(ScalingKind::Linear, fitted);
    return fitted;
}
