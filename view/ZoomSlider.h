#pragma once

#include <cstdint>

// The zoom slider's positions. Ten positions multiply the zoom by e.

constexpr std::int32_t LowestSliderPosition = -50; ///< 0.67 %: a sheet of a gigapixel fits into a window
constexpr std::int32_t TopSliderPosition = 20;     ///< 739 %

/// Screen pixels per image pixel: e^(position / 10). InvalidArgument where that is no number above 0.
double ZoomAtSliderPosition(std::int32_t position);

/// 10 · ln(zoom) / ln(2.71828), rounded half to even; not cut to the slider's range. The constant has five
/// decimals and is not e, so the two directions are no exact inverses: users are promised the zooms that
/// follow from it. ErrorNumber::Overflow.
std::int32_t SliderPositionOf(double zoom);

/// What the label beside the slider shows: zoom · 100, rounded half to even. ErrorNumber::Overflow.
std::int32_t ZoomPercentage(double zoom);
