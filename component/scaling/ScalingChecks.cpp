#include "component/scaling/ScalingChecks.h"

#include "base/ComponentError.h"

#include <algorithm>
#include <string>

namespace {

// Far beyond any coordinate on earth, yet its fourth power is still a double.
constexpr double LargestValue = 1e75;

void RequireUsable(double value, char axis, std::size_t number, std::string_view word) {
    const std::string which =
        std::string("The ") + axis + " value of " + std::string(word) + " " + std::to_string(number);
    if (!std::isfinite(value))
        throw ComponentError(ErrorNumber::ValueNotFinite, which + " is not a finite number.");
    if (std::abs(value) > LargestValue)
        throw ComponentError(ErrorNumber::ValueNotFinite, which + " is too large.");
}

} // namespace

double Flatness(const Vector& a, const Vector& b, const Vector& c) {
    const double longest = std::max({Length(b - a), Length(c - b), Length(a - c)});
    if (!(longest > 0))
        return 0;
    // Divided one after the other, so that tiny sides do not underflow together.
    const Vector ab{(b.x - a.x) / longest, (b.y - a.y) / longest};
    const Vector ac{(c.x - a.x) / longest, (c.y - a.y) / longest};
    return std::abs(Cross(ab, ac));
}

void RequireUsableValues(std::span<const ReferencePoint> points, std::string_view word) {
    for (std::size_t i = 0; i < points.size(); ++i) {
        RequireUsable(points[i].x, 'X', i + 1, word);
        RequireUsable(points[i].y, 'Y', i + 1, word);
    }
}
