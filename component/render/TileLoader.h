#pragma once

#include "component/PyramidLayout.h"
#include "component/render/TileCache.h"
#include "component/render/ViewMemory.h"
#include "component/tiles/TileStore.h"

#include <chrono>
#include <exception>
#include <mutex>
#include <optional>
#include <vector>

/// A rectangle of tiles of one level, decoded.
struct TileBlock {
    int level = 0;
    std::int32_t firstRow = 0, rows = 0;
    std::int32_t firstColumn = 0, columns = 0;
    std::int32_t tileWidth = 0, tileHeight = 0;
    std::vector<TilePixels> tiles; ///< row by row

    /// The pixel row y of the level inside the tile column (a number of the level, not of the block).
    const std::uint32_t* Row(std::int32_t y, std::int32_t column) const {
        const std::int64_t tile = std::int64_t{y / tileHeight - firstRow} * columns + (column - firstColumn);
        return tiles[static_cast<std::size_t>(tile)].get() +
               static_cast<std::ptrdiff_t>(y % tileHeight) * tileWidth;
    }
};

/// Brings decoded tiles from the cache or the source; short-lived helpers read and decode beside the calling
/// thread. A damaged tile is hatched, and remembered as such as long as it stays in the cache. Whatever else
/// keeps a tile from being read, as another program's lock, is an obstacle: no more is read then, and nothing
/// is remembered.
class TileLoader {
public:
    /// All three must outlive the loader. `map` is the number of the layout's map in the memory.
    TileLoader(const PyramidLayout& layout, TileSource& source, ViewMemory& memory, std::uint64_t map);

    using Time = std::chrono::steady_clock::time_point;

    /// Before each view: what stood in the way of the last one may have gone.
    void ForgetObstacle() { obstacle_ = nullptr; }
    /// What stood in the way; nothing when all could be read.
    const std::exception_ptr& Obstacle() const { return obstacle_; }

    /// Fills the block's tiles; its other members say which. With a deadline it may end before all are there,
    /// and answers false then; it always brings some, so that asking again comes to an end. Without one, what
    /// an obstacle hides is blank.
    bool Load(TileBlock& block, std::optional<Time> deadline = {});

    /// Whether every tile of the block is in the cache.
    bool Keeps(TileBlock block);

    /// Most tiles that a block should have, for memory's sake.
    std::size_t LargestBlock() const;

private:
    struct Missing;

    bool IsObstructed();
    /// Nothing when an obstacle stands in the way.
    TilePixels LoadTile(TileDecoder& decoder, int level, const Missing& place);
    std::vector<Missing> FillFromCache(TileBlock& block);
    bool LoadMissing(TileBlock& block, const std::vector<Missing>& missing, std::optional<Time> deadline);

    const PyramidLayout& layout_;
    TileSource& source_;
    ViewMemory& memory_;
    std::uint64_t map_;
    std::size_t tileBytes_; ///< of a decoded tile
    std::mutex mutex_;      ///< of the obstacle while threads read
    std::exception_ptr obstacle_;
};
