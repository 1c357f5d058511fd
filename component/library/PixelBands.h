#pragma once

#include "component/PixelFormat.h"
#include "component/PyramidLayout.h"
#include "component/tiles/TileCodec.h"
#include "component/tiles/TileStore.h"

#include <functional>
#include <unordered_map>

/// Puts a map's tiles together again to bands of full rows in the map's own pixel format.
class PixelBands {
public:
    PixelBands(const PyramidLayout& layout, PixelFormat format, const Palette& palette, TileSource& source,
               int threads);

    /// Number of pixel rows of a band: one tile height, fewer for the last.
    std::int32_t RowsOf(std::int32_t band) const;
    /// The band's rows without gaps; valid until the next call. `step` is called between tiles. Throws
    /// FileDamaged.
    std::span<const std::uint8_t> Read(std::int32_t band, const std::function<void()>& step);

private:
    /// What one thread works with.
    struct Bench {
        TileDecoder decoder;
        std::vector<std::uint8_t> tile;
    };
    void PlaceTile(std::int32_t band, std::int32_t column, Bench& bench);
    void Place(std::int32_t band, std::int32_t column, std::span<const std::uint8_t> png, Bench& bench);
    void CopyRow(const std::uint8_t* from, PixelFormat fromFormat, std::int32_t pixels,
                 std::uint8_t* to) const;
    std::uint8_t IndexOf(const std::uint8_t* rgba) const;

    PyramidLayout layout_;
    PixelFormat format_;
    std::unordered_map<std::uint32_t, std::uint8_t> indexOf_; ///< colour → first palette entry with it
    TileSource& source_;
    int threads_;
    std::vector<Bench> benches_;
    std::vector<std::uint8_t> rows_;
};
