#pragma once

#include "component/PixelFormat.h"
#include "component/render/TileExport.h"
#include "component/tiles/TileCodec.h"

#include <cstdint>
#include <string>
#include <vector>

/// What matters of a tile's pixels for a mosaic of tiles.
enum class TileKind : std::uint8_t { Grey, OpaquePalette, PaletteWithAlpha, Rgb, Rgba };

TileKind KindOf(const TileHeader& header);

/// The kinds of all tiles, in PyramidLayout's count.
using TileKinds = std::vector<TileKind>;

/// GDAL virtual rasters of an exported map. One file with every tile would take long to open for a large map;
/// so each column of tiles has its own, each level is put together from its columns, and map.vrt has the
/// smaller levels as overviews.
class MosaicText {
public:
    MosaicText(const ExportedMap& map, const TileKinds& kinds);

    /// z/x/column.vrt: the tiles of one column, cut to the map.
    std::string Column(int level, std::int32_t column) const;
    /// z/level.vrt: a level above 0 as one raster.
    std::string Level(int level) const;
    /// map.vrt: the map itself with its place on the earth: a geotransform for a linear scaling, ground
    /// control points for a polar one.
    std::string Map() const;

private:
    const ExportedMap& map_;
    const PyramidLayout& layout_;
    const TileKinds& kinds_;
    int bands_;
};
