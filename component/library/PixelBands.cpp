#include "component/library/PixelBands.h"

#include "base/ComponentError.h"
#include "base/Threads.h"

#include <algorithm>
#include <cstring>

namespace {

std::uint32_t ColourKey(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha) {
    return std::uint32_t{red} | std::uint32_t{green} << 8 | std::uint32_t{blue} << 16 |
           std::uint32_t{alpha} << 24;
}

} // namespace

PixelBands::PixelBands(const PyramidLayout& layout, PixelFormat format, const Palette& palette,
                       TileSource& source, int threads)
    : layout_(layout), format_(format), source_(source), threads_(ThreadCount(threads)) {
    for (std::size_t i = 0; i < palette.size(); ++i)
        indexOf_.emplace(ColourKey(palette[i].red, palette[i].green, palette[i].blue, palette[i].alpha),
                         static_cast<std::uint8_t>(i));
    benches_.resize(static_cast<std::size_t>(threads_));
    rows_.resize(static_cast<std::size_t>(layout.Width()) * static_cast<std::size_t>(BytesPerPixel(format)) *
                 static_cast<std::size_t>(std::min(layout.TileHeight(), layout.Height())));
}

std::int32_t PixelBands::RowsOf(std::int32_t band) const {
    const std::int64_t top = std::int64_t{band} * layout_.TileHeight();
    return static_cast<std::int32_t>(std::min<std::int64_t>(layout_.TileHeight(), layout_.Height() - top));
}

std::span<const std::uint8_t> PixelBands::Read(std::int32_t band, const std::function<void()>& step) {
    const std::int32_t columns = layout_.Level(0).columns;
    const std::int32_t atOnce = std::max(16, 4 * threads_);
    for (std::int32_t first = 0; first < columns; first += atOnce) {
        const auto count = static_cast<std::size_t>(std::min(columns - first, atOnce));
        ForEachOnThreads(count, threads_, [&](int thread, std::size_t item) {
            const std::int32_t column = first + static_cast<std::int32_t>(item);
            PlaceTile(band, column, benches_[static_cast<std::size_t>(thread)]);
        });
        step();
    }
    return std::span(rows_).first(static_cast<std::size_t>(RowsOf(band)) *
                                  static_cast<std::size_t>(layout_.Width()) *
                                  static_cast<std::size_t>(BytesPerPixel(format_)));
}

void PixelBands::PlaceTile(std::int32_t band, std::int32_t column, Bench& bench) {
    const std::vector<std::uint8_t> png = source_.ReadTile(0, band, column);
    try {
        Place(band, column, png, bench);
    } catch (const ComponentError& error) {
        if (error.Number() != ErrorNumber::FileDamaged)
            throw;
        source_.RefuseTile(0, band, column, error.Description());
    }
}

void PixelBands::Place(std::int32_t band, std::int32_t column, std::span<const std::uint8_t> png,
                       Bench& bench) {
    const std::int32_t tileWidth = layout_.TileWidth();
    const PixelFormat tileFormat = TileDecoder::ReadHeader(png).format;
    const std::size_t stride =
        static_cast<std::size_t>(tileWidth) * static_cast<std::size_t>(BytesPerPixel(tileFormat));
    std::vector<std::uint8_t>& tile = bench.tile;
    tile.resize(stride * static_cast<std::size_t>(layout_.TileHeight()));
    bench.decoder.Decode(png, tileWidth, layout_.TileHeight(), tile.data(),
                         static_cast<std::ptrdiff_t>(stride));
    const std::int32_t left = column * tileWidth;
    const std::int32_t pixels = std::min(tileWidth, layout_.Width() - left);
    const auto pixelBytes = static_cast<std::size_t>(BytesPerPixel(format_));
    for (std::int32_t y = 0; y < RowsOf(band); ++y)
        CopyRow(tile.data() + static_cast<std::size_t>(y) * stride, tileFormat, pixels,
                rows_.data() + (static_cast<std::size_t>(y) * static_cast<std::size_t>(layout_.Width()) +
                                static_cast<std::size_t>(left)) *
                                   pixelBytes);
}

void PixelBands::CopyRow(const std::uint8_t* from, PixelFormat fromFormat, std::int32_t pixels,
                         std::uint8_t* to) const {
    const auto count = static_cast<std::size_t>(pixels);
    if (fromFormat == format_) {
        std::memcpy(to, from, count * static_cast<std::size_t>(BytesPerPixel(format_)));
        return;
    }
    // Only the tiles at the right and bottom edge have another format than the map: RGBA.
    if (fromFormat != PixelFormat::Rgba)
        throw ComponentError(ErrorNumber::FileDamaged, "A tile has another kind of pixels than its map.");
    for (std::size_t i = 0; i < count; ++i, from += 4) {
        switch (format_) {
        case PixelFormat::Grey:
            to[i] = from[0];
            break;
        case PixelFormat::Palette:
            to[i] = IndexOf(from);
            break;
        case PixelFormat::Rgb:
            std::memcpy(to + 3 * i, from, 3);
            break;
        case PixelFormat::Rgba:
            break; // copied whole above
        }
    }
}

std::uint8_t PixelBands::IndexOf(const std::uint8_t* rgba) const {
    const auto found = indexOf_.find(ColourKey(rgba[0], rgba[1], rgba[2], rgba[3]));
    if (found == indexOf_.end())
        throw ComponentError(ErrorNumber::FileDamaged, "A tile has a colour that its map's palette lacks.");
    return found->second;
}
