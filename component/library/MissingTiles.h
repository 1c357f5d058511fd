#pragma once

#include "component/PyramidLayout.h"
#include "component/storage/Records.h"
#include "component/tiles/TileCodec.h"

#include <array>
#include <functional>

/// Makes the tiles of a map that are lost: empty ones, and overviews from what lies below them. One object a
/// thread.
class MissingTiles {
public:
    /// The PNG of a tile of the level below; called for tiles that there are.
    using Below = std::function<Bytes(std::int32_t row, std::int32_t column)>;

    explicit MissingTiles(const MapRecord& record);

    /// A tile without pixels: transparent where the map has transparency, else white.
    Bytes Empty(int level, std::int32_t row, std::int32_t column);
    /// The overview's tile as it was built from the level below.
    Bytes Overview(int level, std::int32_t row, std::int32_t column, const Below& below);

private:
    /// Pixels of one size in a format that is not a palette.
    struct Picture {
        std::int32_t width = 0;
        std::int32_t height = 0;
        Bytes pixels;
    };
    Bytes Encode(int level, std::int32_t row, std::int32_t column, const Picture& inside);
    Picture Part(int level, std::int32_t row, std::int32_t column, std::int32_t tilesWide) const;
    void Paste(Picture& picture, std::int32_t left, std::int32_t top, const Bytes& png);

    const MapRecord& record_;
    PyramidLayout layout_;
    PixelFormat format_; ///< of the overviews
    TileDecoder decoder_;
    TileEncoder encoder_;
    Bytes decoded_;
};
