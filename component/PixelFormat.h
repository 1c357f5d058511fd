#pragma once

#include <cstdint>
#include <vector>

/// How a map's pixels are kept, 8 bits a sample. The numbers stand in library files and never change.
enum class PixelFormat : std::uint8_t {
    Grey = 1,    ///< one byte: 0 black, 255 white
    Palette = 2, ///< one byte: an index into the map's palette
    Rgb = 3,     ///< three bytes: red, green, blue
    Rgba = 4,    ///< four bytes: red, green, blue, alpha (not premultiplied; 0 is transparent)
};

constexpr int BytesPerPixel(PixelFormat format) {
    switch (format) {
    case PixelFormat::Grey:
    case PixelFormat::Palette:
        return 1;
    case PixelFormat::Rgb:
        return 3;
    case PixelFormat::Rgba:
        return 4;
    }
    return 0;
}

struct PaletteEntry {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 255;

    bool operator==(const PaletteEntry&) const = default;
};

/// 1 to 256 entries; an index beyond the last entry never occurs in a decoded image.
using Palette = std::vector<PaletteEntry>;
