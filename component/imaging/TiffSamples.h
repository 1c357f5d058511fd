#pragma once

#include "component/imaging/TiffLayout.h"

#include <cstddef>
#include <cstdint>
#include <span>

// From the samples of a TIFF row to bytes, one channel at a time.
//
// Unsigned samples of n bits span 0 to 2^n - 1 and become round(v × 255 / (2^n - 1)); for 16 bits that is
// round(v / 257). Signed and floating-point samples are values between the layout's black and white, rounded
// to the nearest (a half upwards); what lies outside is cut off, and what is no number is black.

/// Takes the samples at `first`, `first + step`, ... of a row, counted in samples, one for each byte of
/// `out`.
void UnpackTiffSamples(const TiffLayout& layout, const std::uint8_t* row, std::size_t first, std::size_t step,
                       std::span<std::uint8_t> out);

/// The same for indices of 1 to 8 bits, which keep their value.
void UnpackTiffIndices(std::uint16_t bits, const std::uint8_t* row, std::size_t first, std::size_t step,
                       std::span<std::uint8_t> out);
