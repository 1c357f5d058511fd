#pragma once

#include "component/PixelFormat.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// From kept pixels to those of the screen (see Bitmap): 0xAARRGGBB, colours multiplied by alpha.

/// One pixel; a multiplied colour is round(colour × alpha / 255).
std::uint32_t ScreenPixel(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha);

/// The 256 words that the values of a one-byte pixel stand for: greys, or palette entries (nothing, wholly
/// transparent, beyond the last).
using ScreenTable = std::array<std::uint32_t, 256>;
ScreenTable GreyScreenTable();
ScreenTable PaletteScreenTable(const Palette& palette);

/// A row of `out.size()` pixels. The table is used by the one-byte formats only.
void RowToScreen(const std::uint8_t* row, PixelFormat format, const ScreenTable& table,
                 std::span<std::uint32_t> out);

/// A row of RGB pixels that are stored as differences from the pixel to the left (the PNG filter "sub"). It
/// saves a pass over the row, which on the way to the screen costs as much as unpacking one in six.
void RgbDifferencesToScreen(const std::uint8_t* row, std::span<std::uint32_t> out);
