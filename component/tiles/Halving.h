#pragma once

#include "component/PixelFormat.h"

#include <cstddef>
#include <cstdint>

// One row of an overview from two rows of the level below. A pixel is the arithmetic mean of the 2×2 pixels
// under it, of which only the n that lie inside the image count (n is 4, at odd edges 2 or 1). Means are
// rounded to the nearest whole number, a half upwards: (sum + n / 2) / n.
//
// With alpha, a colour counts as much as its pixel is opaque: the sum of colour × alpha over the sum of
// alpha, rounded likewise, so that what lies unseen under transparent pixels does not bleed into the edges of
// what is seen. Where the mean alpha rounds to nothing, the pixel is 0, 0, 0, 0.

/// Width of the overview's row.
constexpr std::int32_t HalvedWidth(std::int32_t width) {
    return width / 2 + width % 2;
}

/// `lower` is null for the last row of a level of odd height. `format` is Grey, Rgb or Rgba; `out` takes
/// HalvedWidth(width) pixels and lies apart from the rows.
void HalveRows(const std::uint8_t* upper, const std::uint8_t* lower, std::int32_t width, PixelFormat format,
               std::uint8_t* out);
