#pragma once

#include "component/tiles/PyramidBuilder.h"
#include "component/tiles/RowReader.h"
#include "component/tiles/TileStore.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <tuple>
#include <vector>

/// An image in memory, read by rows as a file's is.
class MemoryImage : public RowReader {
public:
    MemoryImage(PixelFormat format, std::int32_t width, std::int32_t height, unsigned seed = 1);

    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;

    /// Called before each read with the number of rows read so far.
    std::function<void(std::int32_t)> onRead;
    ImageInfo info;
    std::vector<std::uint8_t> pixels;

    /// Takes `info` over; call after changing it.
    void UseInfo() { info_ = info; }

private:
    std::int32_t next_ = 0;
};

/// Keeps the tiles in memory and notes any that comes twice.
class MemoryTiles : public TileSink {
public:
    using Place = std::tuple<int, std::int32_t, std::int32_t>; ///< level, row, column

    void Put(int level, std::int32_t row, std::int32_t column,
             std::span<const std::uint8_t> encoded) override;

    /// Called before a tile is kept, by whichever thread brings it.
    std::function<void(const Place&)> onPut;
    std::map<Place, std::vector<std::uint8_t>> tiles;
    int twice = 0;
    std::mutex mutex;
};

/// A whole level put together from its tiles.
struct LevelPixels {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> rgba; ///< of the level alone
    bool edgesAreClear = true;      ///< nothing but 0, 0, 0, 0 beyond the level
    bool formatsAreRight = true;    ///< inner tiles in the level's format, edge tiles in RGBA
};

LevelPixels AssembleLevel(const MemoryTiles& tiles, const PyramidLayout& layout, int level,
                          PixelFormat inner);

/// The pixels of a row-by-row image as RGBA.
std::vector<std::uint8_t> AsRgba(const MemoryImage& image);
