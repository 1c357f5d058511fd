#include "view/ZoomSlider.h"

#include "base/CheckedNumbers.h"

#include <cmath>

namespace {

constexpr double PositionsPerUnit = 10;
constexpr double NearlyE = 2.71828;

} // namespace

double ZoomAtSliderPosition(std::int32_t position) {
    const double zoom = std::exp(position / PositionsPerUnit);
    if (!std::isfinite(zoom) || zoom <= 0)
        throw ComponentError(ErrorNumber::InvalidArgument, "The zoom must be a number above 0.");
    return zoom;
}

std::int32_t SliderPositionOf(double zoom) {
    return CheckedRound<std::int32_t>(PositionsPerUnit * std::log(zoom) / std::log(NearlyE));
}

std::int32_t ZoomPercentage(double zoom) {
    return CheckedRound<std::int32_t>(zoom * 100);
}
