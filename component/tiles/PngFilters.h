#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The five row filters of PNG (ISO/IEC 15948, clause 9). A filtered row is one byte that names the filter and
// then the row's bytes; `step` is the number of bytes of a pixel: 1, 3 or 4.

enum class PngFilter : std::uint8_t { None = 0, Sub = 1, Up = 2, Average = 3, Paeth = 4 };

/// Each byte less the one a pixel to the left.
void FilterSub(std::span<const std::uint8_t> row, std::size_t step, std::uint8_t* out);

/// Undoes a row's filter into `out`, which may be the row's own bytes. `above` is the row over it with its
/// filter undone, empty for the first row. False when `filter` is none of the five.
bool Unfilter(std::uint8_t filter, std::span<const std::uint8_t> row, std::span<const std::uint8_t> above,
              std::size_t step, std::uint8_t* out);
