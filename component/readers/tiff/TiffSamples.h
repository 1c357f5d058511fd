#pragma once

#include "component/readers/tiff/TiffRows.h"

#include <cstddef>
#include <cstdint>
#include <span>

// From the samples of a TIFF row to bytes, one channel at a time.
//
// Unsigned samples of n bits span 0 to 2^n - 1 and become round(v × 255 / (2^n - 1)); for 16 bits that is
// round(v / 257). Signed and floating-point samples have no black and white of their own and are stretched
// between two values, rounded to the nearest (a half upwards); what lies outside is cut off, and what is no
// number is black.

/// Unsigned samples, one for each byte of `out`.
void UnpackTiffSamples(const TiffLayout& layout, const TiffSampleRun& run, std::span<std::uint8_t> out);

/// The same for signed and floating-point samples, as numbers.
void LoadTiffValues(const TiffLayout& layout, const TiffSampleRun& run, std::span<double> out);

/// The values that become 0 and 255.
struct TiffRange {
    double black = 0;
    double white = 0; ///< at least `black`; where it is the same, all values but infinity become 0
};

void StretchTiffValues(std::span<const double> values, const TiffRange& range, std::span<std::uint8_t> out);

/// Indices of 1 to 16 bits, which keep their value.
void UnpackTiffIndices(std::uint16_t bits, const TiffSampleRun& run, std::span<std::uint16_t> out);
