#pragma once

#include "component/PixelFormat.h"

#include <cstdint>

// Rows of one pixel format as rows of another, without loss.

/// The format of a map's overviews: its own, for a palette RGB, or RGBA when an entry is not opaque.
PixelFormat OverviewFormat(PixelFormat format, const Palette& palette);

/// `count` pixels of any format as RGBA. The palette is used by PixelFormat::Palette only.
void RowToRgba(const std::uint8_t* row, PixelFormat format, const Palette& palette, std::int32_t count,
               std::uint8_t* out);

/// `count` indices as the colours they stand for; `format` is Rgb or Rgba.
void IndicesToColours(const std::uint8_t* row, const Palette& palette, std::int32_t count, PixelFormat format,
                      std::uint8_t* out);
