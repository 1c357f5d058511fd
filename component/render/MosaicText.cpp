#include "component/render/MosaicText.h"

#include "component/render/ExportText.h"
#include "component/render/PlaceText.h"

#include <algorithm>
#include <array>

namespace {

/// Block size of a virtual raster, whatever it is made of.
constexpr std::int32_t VirtualBlock = 128;

constexpr int AlphaBand = 4;

std::string Rectangle(const char* element, std::int64_t x, std::int64_t y, std::int32_t width,
                      std::int32_t height) {
    return std::string("<") + element + " xOff=\"" + std::to_string(x) + "\" yOff=\"" + std::to_string(y) +
           "\" xSize=\"" + std::to_string(width) + "\" ySize=\"" + std::to_string(height) + "\"/>";
}

/// A raster that others are put together from. Its size is said, so that it is opened only when it is read.
struct Piece {
    std::string file;
    std::int32_t width = 0, height = 0;           ///< of the file
    std::int32_t blockWidth = 0, blockHeight = 0; ///< of the file
    std::int32_t shownWidth = 0, shownHeight = 0; ///< from its upper left corner
    std::int64_t x = 0, y = 0;                    ///< where it goes
};

/// The source element for one band; `more` comes last inside it.
std::string Source(const char* element, const Piece& piece, int band, const std::string& more = {}) {
    return std::string("    <") + element + "><SourceFilename relativeToVRT=\"1\" shared=\"0\">" +
           piece.file + "</SourceFilename><SourceBand>" + std::to_string(band) +
           "</SourceBand><SourceProperties RasterXSize=\"" + std::to_string(piece.width) +
           "\" RasterYSize=\"" + std::to_string(piece.height) + "\" DataType=\"Byte\" BlockXSize=\"" +
           std::to_string(piece.blockWidth) + "\" BlockYSize=\"" + std::to_string(piece.blockHeight) +
           "\"/>" + Rectangle("SrcRect", 0, 0, piece.shownWidth, piece.shownHeight) +
           Rectangle("DstRect", piece.x, piece.y, piece.shownWidth, piece.shownHeight) + more + "</" +
           element + ">\n";
}

/// A tile as a source for one band of the mosaic, whatever its own bands are.
std::string TileBand(const Piece& piece, TileKind kind, int band) {
    switch (kind) {
    case TileKind::OpaquePalette:
    case TileKind::PaletteWithAlpha:
        return Source("ComplexSource", piece, 1,
                      "<ColorTableComponent>" + std::to_string(band) + "</ColorTableComponent>");
    case TileKind::Rgba:
        return Source("SimpleSource", piece, band);
    case TileKind::Grey:
    case TileKind::Rgb:
        if (band == AlphaBand) // opaque: any band, times nothing, plus 255
            return Source("ComplexSource", piece, 1,
                          "<ScaleOffset>255</ScaleOffset><ScaleRatio>0</ScaleRatio>");
        return Source("SimpleSource", piece, kind == TileKind::Grey ? 1 : band);
    }
    return {};
}

/// A virtual raster; `sources(band)` gives the elements of each of its bands.
template <typename Sources>
std::string VirtualRaster(std::int32_t width, std::int32_t height, int bands, const std::string& head,
                          const Sources& sources) {
    constexpr std::array colours = {"Red", "Green", "Blue", "Alpha"};
    std::string text = "<VRTDataset rasterXSize=\"" + std::to_string(width) + "\" rasterYSize=\"" +
                       std::to_string(height) + "\">\n" + head;
    for (int band = 1; band <= bands; ++band) {
        const char* colour = bands == 1 ? "Gray" : colours[static_cast<std::size_t>(band - 1)];
        text += "  <VRTRasterBand dataType=\"Byte\" band=\"" + std::to_string(band) +
                "\">\n    <ColorInterp>" + colour + "</ColorInterp>\n" + sources(band) +
                "  </VRTRasterBand>\n";
    }
    return text + "</VRTDataset>\n";
}

/// The sources of a level, column by column; `folder` is the level's folder as seen from the mosaic.
std::string ColumnSources(const PyramidLayout& layout, int level, const std::string& folder, int band) {
    const PyramidLevel& at = layout.Level(level);
    std::string text;
    for (std::int32_t column = 0; column < at.columns; ++column) {
        const std::int32_t x = column * layout.TileWidth();
        const std::int32_t width = std::min(layout.TileWidth(), at.width - x);
        const Piece piece{folder + std::to_string(column) + "/column.vrt",
                          width,
                          at.height,
                          std::min(VirtualBlock, width),
                          std::min(VirtualBlock, at.height),
                          width,
                          at.height,
                          x,
                          0};
        text += Source("SimpleSource", piece, band);
    }
    return text;
}

std::string OverviewText(const PyramidLayout& layout, int band) {
    std::string text;
    for (int level = 1; level < layout.Levels(); ++level)
        text += "    <Overview><SourceFilename relativeToVRT=\"1\">" +
                std::to_string(layout.Levels() - 1 - level) + "/level.vrt</SourceFilename><SourceBand>" +
                std::to_string(band) + "</SourceBand></Overview>\n";
    return text;
}

/// 1 grey, 3 red, green, blue, or 4 with alpha. Tiles at the edge have alpha only for what lies beyond the
/// map, so they do not decide; a map that has no others gets four bands.
int BandsOf(const PyramidLayout& layout, const TileKinds& kinds) {
    const PyramidLevel& map = layout.Level(0);
    bool alpha = false, colour = false, any = false;
    for (std::int32_t row = 0; row < map.rows; ++row)
        for (std::int32_t column = 0; column < map.columns; ++column) {
            if (layout.IsEdgeTile(0, row, column))
                continue;
            const TileKind kind = kinds[static_cast<std::size_t>(layout.Entry(0, row, column))];
            any = true;
            alpha = alpha || kind == TileKind::Rgba || kind == TileKind::PaletteWithAlpha;
            colour = colour || kind != TileKind::Grey;
        }
    return alpha || !any ? AlphaBand : colour ? 3 : 1;
}

} // namespace

TileKind KindOf(const TileHeader& header) {
    switch (header.format) {
    case PixelFormat::Grey:
        return TileKind::Grey;
    case PixelFormat::Rgb:
        return TileKind::Rgb;
    case PixelFormat::Rgba:
        return TileKind::Rgba;
    case PixelFormat::Palette:
        break;
    }
    const bool opaque = std::all_of(header.palette.begin(), header.palette.end(),
                                    [](const PaletteEntry& entry) { return entry.alpha == 255; });
    return opaque ? TileKind::OpaquePalette : TileKind::PaletteWithAlpha;
}

MosaicText::MosaicText(const ExportedMap& map, const TileKinds& kinds)
    : map_(map), layout_(map.layout), kinds_(kinds), bands_(BandsOf(layout_, kinds)) {}

std::string MosaicText::Column(int level, std::int32_t column) const {
    const PyramidLevel& at = layout_.Level(level);
    const std::int32_t width = std::min(layout_.TileWidth(), at.width - column * layout_.TileWidth());
    return VirtualRaster(width, at.height, bands_, {}, [&](int band) {
        std::string text;
        for (std::int32_t row = 0; row < at.rows; ++row) {
            const std::int32_t y = row * layout_.TileHeight();
            const Piece piece{std::to_string(row) + ".png",
                              layout_.TileWidth(),
                              layout_.TileHeight(),
                              layout_.TileWidth(),
                              1,
                              width,
                              std::min(layout_.TileHeight(), at.height - y),
                              0,
                              y};
            text +=
                TileBand(piece, kinds_[static_cast<std::size_t>(layout_.Entry(level, row, column))], band);
        }
        return text;
    });
}

std::string MosaicText::Level(int level) const {
    const PyramidLevel& at = layout_.Level(level);
    return VirtualRaster(at.width, at.height, bands_, {},
                         [&](int band) { return ColumnSources(layout_, level, {}, band); });
}

std::string MosaicText::Map() const {
    const std::string folder = std::to_string(layout_.Levels() - 1) + "/";
    const std::string head = PlaceText(map_) + "  <Metadata>\n    <MDI key=\"TITLE\">" +
                             MarkupText(map_.name) + "</MDI>\n  </Metadata>\n";
    return VirtualRaster(layout_.Width(), layout_.Height(), bands_, head, [&](int band) {
        return ColumnSources(layout_, 0, folder, band) + OverviewText(layout_, band);
    });
}
