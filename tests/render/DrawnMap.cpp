#include "tests/render/DrawnMap.h"

#include "base/ComponentError.h"

#include <algorithm>
#include <array>

namespace {

Bitmap Halved(const Bitmap& below) {
    Bitmap half((below.width + 1) / 2, (below.height + 1) / 2);
    for (std::int32_t y = 0; y < half.height; ++y)
        for (std::int32_t x = 0; x < half.width; ++x) {
            std::array<unsigned, 4> sums{};
            unsigned count = 0;
            for (std::int32_t v = 2 * y; v < std::min(2 * y + 2, below.height); ++v)
                for (std::int32_t u = 2 * x; u < std::min(2 * x + 2, below.width); ++u, ++count)
                    for (unsigned channel = 0; channel < 4; ++channel)
                        sums[channel] += below.Row(v)[u] >> (8 * channel) & 0xFF;
            // Alpha must stay 0 or 255: a pixel with anything in it counts as opaque.
            const bool opaque = sums[3] > 0;
            for (unsigned channel = 0; channel < 3; ++channel)
                half.Row(y)[x] |= opaque ? (sums[channel] / count) << (8 * channel) : 0;
            half.Row(y)[x] |= opaque ? 0xFF000000U : 0;
        }
    return half;
}

std::uint8_t Byte(std::uint32_t pixel, int shift) {
    return static_cast<std::uint8_t>(pixel >> shift);
}

void AppendPixel(std::vector<std::uint8_t>& bytes, std::uint32_t pixel, PixelFormat format,
                 const Palette& palette) {
    if (format == PixelFormat::Palette) {
        const PaletteEntry colour{Byte(pixel, 16), Byte(pixel, 8), Byte(pixel, 0), Byte(pixel, 24)};
        bytes.push_back(
            static_cast<std::uint8_t>(std::find(palette.begin(), palette.end(), colour) - palette.begin()));
        return;
    }
    if (format != PixelFormat::Grey) {
        bytes.push_back(Byte(pixel, 16));
        bytes.push_back(Byte(pixel, 8));
    }
    bytes.push_back(Byte(pixel, 0));
    if (format == PixelFormat::Rgba)
        bytes.push_back(Byte(pixel, 24));
}

} // namespace

DrawnMap::DrawnMap(const Bitmap& picture, std::int32_t tileWidth, std::int32_t tileHeight, PixelFormat format)
    : layout_(picture.width, picture.height, tileWidth, tileHeight), format_(format) {
    levels_.push_back(picture);
    while (static_cast<int>(levels_.size()) < layout_.Levels())
        levels_.push_back(Halved(levels_.back()));
    for (const std::uint32_t pixel : picture.pixels) {
        const PaletteEntry colour{Byte(pixel, 16), Byte(pixel, 8), Byte(pixel, 0), Byte(pixel, 24)};
        if (format == PixelFormat::Palette &&
            std::find(palette_.begin(), palette_.end(), colour) == palette_.end())
            palette_.push_back(colour);
    }
}

std::vector<std::uint8_t> DrawnMap::ReadTile(int level, std::int32_t row, std::int32_t column) {
    const std::scoped_lock lock(mutex_); // one encoder for all
    ++reads_;
    const std::int64_t entry = layout_.Entry(level, row, column);
    if (damaged_.contains(entry))
        throw ComponentError(ErrorNumber::FileDamaged, "A tile is damaged.");
    if (garbled_.contains(entry))
        return {1, 2, 3};
    const bool opaqueColour = level > 0 && format_ == PixelFormat::Palette;
    const PixelFormat format = layout_.IsEdgeTile(level, row, column) ? PixelFormat::Rgba
                               : opaqueColour                         ? PixelFormat::Rgb
                                                                      : format_;
    const Bitmap& picture = Level(level);
    std::vector<std::uint8_t> bytes;
    for (std::int32_t y = row * layout_.TileHeight(); y < (row + 1) * layout_.TileHeight(); ++y)
        for (std::int32_t x = column * layout_.TileWidth(); x < (column + 1) * layout_.TileWidth(); ++x) {
            const bool inside = x < picture.width && y < picture.height;
            AppendPixel(bytes, inside ? picture.Row(y)[x] : 0, format, palette_);
        }
    const auto stride = static_cast<std::ptrdiff_t>(layout_.TileWidth()) * BytesPerPixel(format);
    const auto encoded =
        encoder_.Encode({bytes.data(), stride, layout_.TileWidth(), layout_.TileHeight(), format, &palette_});
    return {encoded.begin(), encoded.end()};
}

Bitmap SpeckledPicture(std::int32_t width, std::int32_t height) {
    Bitmap picture(width, height);
    std::uint32_t state = 12345;
    for (std::uint32_t& pixel : picture.pixels) {
        state = state * 1664525 + 1013904223;
        const std::uint32_t grey = (state >> 26) * 4;
        pixel = 0xFF000000 | grey << 16 | (255 - grey) << 8 | grey;
    }
    return picture;
}

Bitmap SlopingPicture(std::int32_t width, std::int32_t height) {
    Bitmap picture(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            picture.Row(y)[x] = 0xFF000000U | static_cast<std::uint32_t>(x * 255 / width) << 16 |
                                static_cast<std::uint32_t>(y * 255 / height) << 8;
    return picture;
}

double MeanOver(const Bitmap& level, int shift, double x0, double x1, double y0, double y1) {
    x0 = std::max(x0, 0.0), y0 = std::max(y0, 0.0);
    x1 = std::min<double>(x1, level.width);
    y1 = std::min<double>(y1, level.height);
    double sum = 0, weight = 0;
    for (int y = static_cast<int>(y0); y < y1; ++y)
        for (int x = static_cast<int>(x0); x < x1; ++x) {
            const double part = (std::min(x1, x + 1.0) - std::max(x0, double(x))) *
                                (std::min(y1, y + 1.0) - std::max(y0, double(y)));
            sum += part * (level.Row(y)[x] >> shift & 0xFF);
            weight += part;
        }
    return sum / weight;
}

double MeanAround(const Bitmap& level, int number, int shift, double x, double y, double zoom) {
    const double size = 1 << number, half = 0.5 / zoom;
    return MeanOver(level, shift, (x + 0.5 - half) / size, (x + 0.5 + half) / size, (y + 0.5 - half) / size,
                    (y + 0.5 + half) / size);
}
