#include "component/library/MissingTiles.h"

#include "component/tiles/Halving.h"

#include <algorithm>

namespace {

using Rgba = std::array<std::uint8_t, 4>;

bool IsOpaque(const Palette& palette) {
    return std::ranges::all_of(palette, [](const PaletteEntry& entry) { return entry.alpha == 255; });
}

PixelFormat OverviewFormat(const MapRecord& record) {
    if (record.format != PixelFormat::Palette)
        return record.format;
    return IsOpaque(record.palette) ? PixelFormat::Rgb : PixelFormat::Rgba;
}

Rgba ColourOf(const std::uint8_t* pixel, PixelFormat format, const Palette& palette) {
    switch (format) {
    case PixelFormat::Grey:
        return {*pixel, *pixel, *pixel, 255};
    case PixelFormat::Palette: {
        const PaletteEntry entry = *pixel < palette.size() ? palette[*pixel] : PaletteEntry();
        return {entry.red, entry.green, entry.blue, entry.alpha};
    }
    case PixelFormat::Rgb:
        return {pixel[0], pixel[1], pixel[2], 255};
    case PixelFormat::Rgba:
        break;
    }
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

/// The entry that stands for nothing: the most transparent, of the opaque ones the lightest.
std::uint8_t EmptyEntry(const Palette& palette) {
    const auto fullness = [](const PaletteEntry& entry) {
        return entry.alpha * 1000 - (entry.red + entry.green + entry.blue);
    };
    return static_cast<std::uint8_t>(std::ranges::min_element(palette, {}, fullness) - palette.begin());
}

/// What a pixel of nothing is made of, in any format.
std::uint8_t EmptySample(const MapRecord& record) {
    if (record.format == PixelFormat::Palette)
        return EmptyEntry(record.palette);
    return record.format == PixelFormat::Rgba ? 0 : 255;
}

std::size_t BytesOf(std::int32_t width, std::int32_t height, PixelFormat format) {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
           static_cast<std::size_t>(BytesPerPixel(format));
}

} // namespace

MissingTiles::MissingTiles(const MapRecord& record)
    : record_(record), layout_(record.Layout()), format_(OverviewFormat(record)) {}

Bytes MissingTiles::Empty(int level, std::int32_t row, std::int32_t column) {
    const std::int32_t width = layout_.TileWidth(), height = layout_.TileHeight();
    if (level == 0 && !layout_.IsEdgeTile(level, row, column)) {
        const Bytes pixels(BytesOf(width, height, record_.format), EmptySample(record_));
        const auto png =
            encoder_.Encode({pixels.data(), std::ptrdiff_t{width} * BytesPerPixel(record_.format), width,
                             height, record_.format, &record_.palette});
        return {png.begin(), png.end()};
    }
    Picture inside = Part(level, row, column, 1);
    const std::uint8_t sample = EmptySample(record_);
    const Rgba colour = record_.format == PixelFormat::Palette
                            ? ColourOf(&sample, record_.format, record_.palette)
                            : Rgba{sample, sample, sample, sample};
    const auto pixelBytes = static_cast<std::size_t>(BytesPerPixel(format_));
    for (std::size_t i = 0; i < inside.pixels.size(); ++i)
        inside.pixels[i] = colour.at(i % pixelBytes);
    return Encode(level, row, column, inside);
}

/// The part of a level under so many tiles in a row and as many rows of them, as far as it lies in the level.
MissingTiles::Picture MissingTiles::Part(int level, std::int32_t row, std::int32_t column,
                                         std::int32_t tilesWide) const {
    const PyramidLevel& at = layout_.Level(level);
    Picture picture;
    picture.width = static_cast<std::int32_t>(
        std::min<std::int64_t>(std::int64_t{layout_.TileWidth()} * tilesWide,
                               at.width - std::int64_t{column} * layout_.TileWidth()));
    picture.height = static_cast<std::int32_t>(
        std::min<std::int64_t>(std::int64_t{layout_.TileHeight()} * tilesWide,
                               at.height - std::int64_t{row} * layout_.TileHeight()));
    picture.pixels.resize(BytesOf(picture.width, picture.height, format_));
    return picture;
}

void MissingTiles::Paste(Picture& picture, std::int32_t left, std::int32_t top, const Bytes& png) {
    const PixelFormat format = TileDecoder::ReadHeader(png).format;
    const auto from = static_cast<std::size_t>(BytesPerPixel(format));
    const auto to = static_cast<std::size_t>(BytesPerPixel(format_));
    const auto width = static_cast<std::size_t>(layout_.TileWidth());
    decoded_.resize(BytesOf(layout_.TileWidth(), layout_.TileHeight(), format));
    decoder_.Decode(png, layout_.TileWidth(), layout_.TileHeight(), decoded_.data(),
                    static_cast<std::ptrdiff_t>(width * from));
    for (std::int32_t y = top; y < std::min(picture.height, top + layout_.TileHeight()); ++y)
        for (std::int32_t x = left; x < std::min(picture.width, left + layout_.TileWidth()); ++x) {
            const std::size_t source =
                static_cast<std::size_t>(y - top) * width + static_cast<std::size_t>(x - left);
            const std::size_t target = static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                                       static_cast<std::size_t>(x);
            const Rgba colour = ColourOf(&decoded_[source * from], format, record_.palette);
            std::copy_n(colour.begin(), to, &picture.pixels[target * to]);
        }
}

Bytes MissingTiles::Overview(int level, std::int32_t row, std::int32_t column, const Below& below) {
    const PyramidLevel& under = layout_.Level(level - 1);
    Picture source = Part(level - 1, 2 * row, 2 * column, 2);
    for (std::int32_t y = 0; y < 2 && 2 * row + y < under.rows; ++y)
        for (std::int32_t x = 0; x < 2 && 2 * column + x < under.columns; ++x)
            Paste(source, x * layout_.TileWidth(), y * layout_.TileHeight(),
                  below(2 * row + y, 2 * column + x));
    Picture halved = Part(level, row, column, 1);
    const std::size_t rowBytes = BytesOf(source.width, 1, format_);
    for (std::int32_t y = 0; y < halved.height; ++y) {
        const std::uint8_t* upper = &source.pixels[static_cast<std::size_t>(2 * y) * rowBytes];
        HalveRows(upper, 2 * y + 1 < source.height ? upper + rowBytes : nullptr, source.width, format_,
                  &halved.pixels[BytesOf(halved.width, y, format_)]);
    }
    return Encode(level, row, column, halved);
}

Bytes MissingTiles::Encode(int level, std::int32_t row, std::int32_t column, const Picture& inside) {
    const std::int32_t width = layout_.TileWidth(), height = layout_.TileHeight();
    const bool isEdge = layout_.IsEdgeTile(level, row, column);
    const PixelFormat format = isEdge ? PixelFormat::Rgba : format_;
    Bytes pixels(BytesOf(width, height, format));
    const auto from = static_cast<std::size_t>(BytesPerPixel(format_));
    const auto to = static_cast<std::size_t>(BytesPerPixel(format));
    for (std::int32_t y = 0; y < inside.height; ++y)
        for (std::int32_t x = 0; x < inside.width; ++x) {
            const std::uint8_t* pixel =
                &inside.pixels[BytesOf(inside.width, y, format_) + static_cast<std::size_t>(x) * from];
            const Rgba colour = ColourOf(pixel, format_, record_.palette);
            std::copy_n(colour.begin(), to,
                        &pixels[BytesOf(width, y, format) + static_cast<std::size_t>(x) * to]);
        }
    const auto png = encoder_.Encode({pixels.data(), std::ptrdiff_t{width} * BytesPerPixel(format), width,
                                      height, format, &record_.palette});
    return {png.begin(), png.end()};
}
