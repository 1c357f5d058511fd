#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Takes the tiles of a map while its pyramid is built.
class TileSink {
public:
    virtual ~TileSink() = default;
    /// Keeps one encoded tile (a PNG of exactly one tile's size). Called once for every tile of every level,
    /// in no fixed order, by several threads at the same time.
    virtual void Put(int level, std::int32_t row, std::int32_t column,
                     std::span<const std::uint8_t> encoded) = 0;
};

/// Gives the tiles of a map.
class TileSource {
public:
    virtual ~TileSource() = default;
    /// The encoded tile, checked against its digest. Throws FileDamaged, naming map and tile, when it does
    /// not match; FileNotReadable on an I/O error. May be called by several
    /// threads at once.
    virtual std::vector<std::uint8_t> ReadTile(int level, std::int32_t row, std::int32_t column) = 0;
    /// Throws FileDamaged for a tile that is what was stored and still no picture of the map's, with a
    /// sentence that names it as well as the source can.
    [[noreturn]] virtual void RefuseTile(int level, std::int32_t row, std::int32_t column,
                                         const std::string& reason) const;
};
