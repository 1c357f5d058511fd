#include "component/tiles/ColourRows.h"

#include <algorithm>
#include <array>

namespace {

/// A palette of full length, so that no index needs a check.
std::array<PaletteEntry, 256> FullPalette(const Palette& palette) {
    std::array<PaletteEntry, 256> full{};
    std::copy_n(palette.begin(), std::min(palette.size(), full.size()), full.begin());
    return full;
}

template <std::size_t Step>
void LookUp(const std::uint8_t* row, const Palette& palette, std::int32_t count, std::uint8_t* out) {
    const std::array<PaletteEntry, 256> full = FullPalette(palette);
    for (std::int32_t i = 0; i < count; ++i, out += Step) {
        const PaletteEntry entry = full[row[i]];
        out[0] = entry.red;
        out[1] = entry.green;
        out[2] = entry.blue;
        if constexpr (Step == 4)
            out[3] = entry.alpha;
    }
}

} // namespace

PixelFormat OverviewFormat(PixelFormat format, const Palette& palette) {
    if (format != PixelFormat::Palette)
        return format;
    const bool opaque =
        std::all_of(palette.begin(), palette.end(), [](PaletteEntry e) { return e.alpha == 255; });
    return opaque ? PixelFormat::Rgb : PixelFormat::Rgba;
}

void RowToRgba(const std::uint8_t* row, PixelFormat format, const Palette& palette, std::int32_t count,
               std::uint8_t* out) {
    const auto put = [&out](std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
        out[0] = red;
        out[1] = green;
        out[2] = blue;
        out[3] = 255;
        out += 4;
    };
    switch (format) {
    case PixelFormat::Grey:
        for (std::int32_t i = 0; i < count; ++i)
            put(row[i], row[i], row[i]);
        return;
    case PixelFormat::Palette:
        LookUp<4>(row, palette, count, out);
        return;
    case PixelFormat::Rgb:
        for (std::int32_t i = 0; i < count; ++i, row += 3)
            put(row[0], row[1], row[2]);
        return;
    case PixelFormat::Rgba:
        std::copy_n(row, std::size_t{4} * static_cast<std::size_t>(count), out);
        return;
    }
}

void IndicesToColours(const std::uint8_t* row, const Palette& palette, std::int32_t count, PixelFormat format,
                      std::uint8_t* out) {
    if (format == PixelFormat::Rgba)
        LookUp<4>(row, palette, count, out);
    else
        LookUp<3>(row, palette, count, out);
}
