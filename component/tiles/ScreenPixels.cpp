#include "component/tiles/ScreenPixels.h"

#include <algorithm>

namespace {

/// round(colour × alpha / 255) without a division: exact for all 65,536 pairs.
constexpr std::uint32_t Multiply(std::uint32_t colour, std::uint32_t alpha) {
    const std::uint32_t product = colour * alpha + 128;
    return (product + (product >> 8)) >> 8;
}

constexpr std::uint32_t Word(std::uint32_t red, std::uint32_t green, std::uint32_t blue,
                             std::uint32_t alpha) {
    return alpha << 24 | red << 16 | green << 8 | blue;
}

} // namespace

std::uint32_t ScreenPixel(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha) {
    return Word(Multiply(red, alpha), Multiply(green, alpha), Multiply(blue, alpha), alpha);
}

ScreenTable GreyScreenTable() {
    ScreenTable table{};
    for (std::uint32_t value = 0; value < table.size(); ++value)
        table[value] = Word(value, value, value, 255);
    return table;
}

ScreenTable PaletteScreenTable(const Palette& palette) {
    ScreenTable table{};
    const std::size_t count = std::min(palette.size(), table.size());
    for (std::size_t i = 0; i < count; ++i)
        table[i] = ScreenPixel(palette[i].red, palette[i].green, palette[i].blue, palette[i].alpha);
    return table;
}

void RowToScreen(const std::uint8_t* row, PixelFormat format, const ScreenTable& table,
                 std::span<std::uint32_t> out) {
    const std::size_t count = out.size();
    switch (format) {
    case PixelFormat::Grey:
    case PixelFormat::Palette:
        for (std::size_t i = 0; i < count; ++i)
            out[i] = table[row[i]];
        return;
    case PixelFormat::Rgb:
        for (std::size_t i = 0; i < count; ++i)
            out[i] = Word(row[3 * i], row[3 * i + 1], row[3 * i + 2], 255);
        return;
    case PixelFormat::Rgba:
        for (std::size_t i = 0; i < count; ++i)
            out[i] = ScreenPixel(row[4 * i], row[4 * i + 1], row[4 * i + 2], row[4 * i + 3]);
        return;
    }
}

void RgbDifferencesToScreen(const std::uint8_t* row, std::span<std::uint32_t> out) {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    for (std::uint32_t& word : out) {
        red = static_cast<std::uint8_t>(red + row[0]);
        green = static_cast<std::uint8_t>(green + row[1]);
        blue = static_cast<std::uint8_t>(blue + row[2]);
        word = Word(red, green, blue, 255);
        row += 3;
    }
}
