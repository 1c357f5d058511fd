#include "component/tiles/TileCutter.h"

#include "component/tiles/ColourRows.h"

#include <algorithm>

std::int32_t TileCutter::ColumnsInside(const Strip& strip, std::int32_t column) const {
    const PyramidLayout& layout = plan_.Layout();
    const std::int64_t left = std::int64_t{column} * layout.TileWidth();
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(layout.TileWidth(), layout.Level(strip.level).width - left));
}

std::int64_t TileCutter::PixelsInside(const Strip& strip, std::int32_t column) const {
    return std::int64_t{ColumnsInside(strip, column)} * plan_.StripRows(strip.level, strip.row);
}

std::span<const std::uint8_t> TileCutter::Encode(const Strip& strip, std::int32_t column) {
    const PyramidLayout& layout = plan_.Layout();
    PixelView view;
    view.format = plan_.Format(strip.level);
    view.stride = static_cast<std::ptrdiff_t>(plan_.RowBytes(strip.level));
    view.pixels =
        strip.pixels.get() + std::ptrdiff_t{column} * layout.TileWidth() * BytesPerPixel(view.format);
    view.width = ColumnsInside(strip, column);
    view.height = plan_.StripRows(strip.level, strip.row);
    view.palette = &plan_.Image().palette;
    return encoder_.Encode(layout.IsEdgeTile(strip.level, strip.row, column) ? EdgeView(view) : view);
}

PixelView TileCutter::EdgeView(const PixelView& inside) {
    constexpr std::ptrdiff_t PixelBytes = BytesPerPixel(PixelFormat::Rgba);
    const PyramidLayout& layout = plan_.Layout();
    const std::ptrdiff_t stride = layout.TileWidth() * PixelBytes;
    edge_.assign(static_cast<std::size_t>(stride) * static_cast<std::size_t>(layout.TileHeight()), 0);
    for (std::int32_t y = 0; y < inside.height; ++y)
        RowToRgba(inside.pixels + y * inside.stride, inside.format, *inside.palette, inside.width,
                  edge_.data() + y * stride);
    return {edge_.data(), stride, layout.TileWidth(), layout.TileHeight(), PixelFormat::Rgba, nullptr};
}
