#include "PyramidFixtures.h"

#include "component/tiles/TileCodec.h"

#include <algorithm>
#include <random>

namespace {

std::uint8_t Byte(unsigned long value) {
    return static_cast<std::uint8_t>(value);
}

Palette SomePalette(std::mt19937& random, bool opaque) {
    Palette palette;
    for (int i = 0; i < 50; ++i)
        palette.push_back(
            {Byte(random()), Byte(random()), Byte(random()), opaque ? Byte(255) : Byte(random())});
    return palette;
}

} // namespace

MemoryImage::MemoryImage(PixelFormat format, std::int32_t width, std::int32_t height, unsigned seed) {
    std::mt19937 random(seed);
    info.width = width;
    info.height = height;
    info.format = format;
    if (format == PixelFormat::Palette)
        info.palette = SomePalette(random, seed % 2 != 0);
    UseInfo();
    const auto step = static_cast<std::size_t>(BytesPerPixel(format));
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * step);
    for (std::uint8_t& value : pixels)
        value = format == PixelFormat::Palette ? Byte(random() % 50) : Byte(random());
    // Whole areas without transparency, and without anything else, as in real pictures.
    for (std::size_t i = 3; format == PixelFormat::Rgba && i < pixels.size(); i += 4)
        if (const std::size_t area = i / 4 / 150 % 4; area < 2)
            pixels[i] = area == 0 ? 255 : 0;
}

void MemoryImage::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    if (onRead)
        onRead(next_);
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{info.width} * BytesPerPixel(info.format);
    for (std::int32_t i = 0; i < count; ++i, ++next_)
        std::copy_n(pixels.begin() + next_ * rowBytes, rowBytes, rows + i * stride);
}

void MemoryTiles::Put(int level, std::int32_t row, std::int32_t column,
                      std::span<const std::uint8_t> encoded) {
    const Place place{level, row, column};
    if (onPut)
        onPut(place);
    const std::lock_guard lock(mutex);
    if (!tiles.emplace(place, std::vector<std::uint8_t>(encoded.begin(), encoded.end())).second)
        ++twice;
}

LevelPixels AssembleLevel(const MemoryTiles& tiles, const PyramidLayout& layout, int level,
                          PixelFormat inner) {
    const PyramidLevel& size = layout.Level(level);
    LevelPixels result{size.width, size.height, {}, true, true};
    result.rgba.resize(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4);
    TileDecoder decoder;
    std::vector<std::uint8_t> tile(static_cast<std::size_t>(layout.TileWidth()) *
                                   static_cast<std::size_t>(layout.TileHeight()) * 4);
    const auto take = [&](const TileHeader& header, std::int32_t row, std::int32_t column) {
        const auto step = static_cast<std::size_t>(BytesPerPixel(header.format));
        for (std::int32_t i = 0; i < layout.TileWidth() * layout.TileHeight(); ++i) {
            const std::uint8_t* p = tile.data() + static_cast<std::size_t>(i) * step;
            std::array<std::uint8_t, 4> pixel{p[0], p[0], p[0], 255};
            if (header.format == PixelFormat::Palette) {
                const PaletteEntry e = header.palette[p[0]];
                pixel = {e.red, e.green, e.blue, e.alpha};
            } else if (step >= 3) {
                pixel = {p[0], p[1], p[2], step == 4 ? p[3] : Byte(255)};
            }
            const std::int32_t x = column * layout.TileWidth() + i % layout.TileWidth();
            const std::int32_t y = row * layout.TileHeight() + i / layout.TileWidth();
            if (x < size.width && y < size.height)
                std::copy(pixel.begin(), pixel.end(),
                          result.rgba.begin() + (std::ptrdiff_t{y} * size.width + x) * 4);
            else if (pixel != std::array<std::uint8_t, 4>{})
                result.edgesAreClear = false;
        }
    };
    for (std::int32_t row = 0; row < size.rows; ++row)
        for (std::int32_t column = 0; column < size.columns; ++column) {
            const std::vector<std::uint8_t>& png = tiles.tiles.at({level, row, column});
            const auto header = TileDecoder::ReadHeader(png);
            decoder.Decode(png, layout.TileWidth(), layout.TileHeight(), tile.data(),
                           std::ptrdiff_t{layout.TileWidth()} * BytesPerPixel(header.format));
            const bool isEdge = layout.IsEdgeTile(level, row, column);
            result.formatsAreRight &= header.format == (isEdge ? PixelFormat::Rgba : inner);
            take(header, row, column);
        }
    return result;
}

std::vector<std::uint8_t> AsRgba(const MemoryImage& image) {
    std::vector<std::uint8_t> rgba;
    const auto step = static_cast<std::size_t>(BytesPerPixel(image.info.format));
    for (std::size_t i = 0; i < image.pixels.size(); i += step) {
        const std::uint8_t* p = image.pixels.data() + i;
        if (image.info.format == PixelFormat::Palette) {
            const PaletteEntry e = image.info.palette[p[0]];
            rgba.insert(rgba.end(), {e.red, e.green, e.blue, e.alpha});
        } else if (step == 1) {
            rgba.insert(rgba.end(), {p[0], p[0], p[0], 255});
        } else {
            rgba.insert(rgba.end(), {p[0], p[1], p[2], step == 4 ? p[3] : Byte(255)});
        }
    }
    return rgba;
}
