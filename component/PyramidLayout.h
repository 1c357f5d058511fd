#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Smallest and largest tile side in pixels; width and height are chosen independently.
inline constexpr std::int32_t MinTileSide = 64;
inline constexpr std::int32_t MaxTileSide = 1024;

/// One level of a pyramid: its size in pixels and how many tiles it has.
struct PyramidLevel {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t columns = 0;
    std::int32_t rows = 0;
    std::int64_t firstEntry = 0; ///< number of tiles in all levels below this one
};

/// Where the tiles of a map lie. Level 0 is the map itself; each further level (overview) has half the size
/// of the one before, rounded up, until one tile holds it. Tiles are counted level by level, row by row,
/// column by column, from 0.
class PyramidLayout {
public:
    /// Sizes in pixels, at least 1; tile sides MinTileSide to MaxTileSide. Throws InvalidTileSize or
    /// InvalidArgument.
    PyramidLayout(std::int32_t width, std::int32_t height, std::int32_t tileWidth, std::int32_t tileHeight);

    std::int32_t Width() const { return levels_.front().width; }
    std::int32_t Height() const { return levels_.front().height; }
    std::int32_t TileWidth() const { return tileWidth_; }
    std::int32_t TileHeight() const { return tileHeight_; }

    int Levels() const { return static_cast<int>(levels_.size()); }
    /// 0 to Levels() - 1; std::out_of_range for any other.
    const PyramidLevel& Level(int level) const { return levels_.at(static_cast<std::size_t>(level)); }

    /// Position of a tile in the count over all levels. Row and column from 0; InvalidArgument outside the
    /// level.
    std::int64_t Entry(int level, std::int32_t row, std::int32_t column) const;
    /// Number of tiles of all levels together.
    std::int64_t Entries() const;

    /// True when a part of the tile lies outside the level, to the right or below.
    bool IsEdgeTile(int level, std::int32_t row, std::int32_t column) const;

private:
    std::int32_t tileWidth_;
    std::int32_t tileHeight_;
    std::vector<PyramidLevel> levels_;
};
