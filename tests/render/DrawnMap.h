#pragma once

#include "component/Bitmap.h"
#include "component/PyramidLayout.h"
#include "component/tiles/TileCodec.h"
#include "component/tiles/TileStore.h"

#include <mutex>
#include <set>
#include <string>
#include <utility>

/// A map made of a given picture, whose pyramid is computed here by the plainest means.
class DrawnMap : public TileSource {
public:
    /// Pixels are opaque or wholly transparent, so that they are the same before and after multiplication by
    /// alpha. Grey takes the blue channel; Palette needs a picture of at most 256 colours.
    DrawnMap(const Bitmap& picture, std::int32_t tileWidth, std::int32_t tileHeight, PixelFormat format);

    const PyramidLayout& Layout() const { return layout_; }
    /// One level's pixels.
    const Bitmap& Level(int level) const { return levels_.at(static_cast<std::size_t>(level)); }

    std::vector<std::uint8_t> ReadTile(int level, std::int32_t row, std::int32_t column) override;

    /// From now on reading the tile fails.
    void Damage(int level, std::int32_t row, std::int32_t column) {
        damaged_.insert(layout_.Entry(level, row, column));
    }
    /// From now on the tile is no PNG.
    void Garble(int level, std::int32_t row, std::int32_t column) {
        garbled_.insert(layout_.Entry(level, row, column));
    }
    int Reads() const { return reads_; }

private:
    PyramidLayout layout_;
    PixelFormat format_;
    std::vector<Bitmap> levels_;
    Palette palette_;
    TileEncoder encoder_;
    std::set<std::int64_t> damaged_;
    std::set<std::int64_t> garbled_;
    std::mutex mutex_;
    int reads_ = 0;
};

/// A picture in which every pixel differs from its neighbours, in 64 colours.
Bitmap SpeckledPicture(std::int32_t width, std::int32_t height);
/// A picture whose red grows to the right and whose green grows downwards.
Bitmap SlopingPicture(std::int32_t width, std::int32_t height);

/// Mean of a channel (by its shift) over the part of a level, where pixel i reaches from i to i + 1; cut to
/// it.
double MeanOver(const Bitmap& level, int shift, double x0, double x1, double y0, double y1);
/// The same over half a screen pixel to each side of a place on the map, whose whole numbers are the middles
/// of pixels; `number` is the level's.
double MeanAround(const Bitmap& level, int number, int shift, double x, double y, double zoom);
