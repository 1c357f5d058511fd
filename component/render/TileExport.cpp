#include "component/render/TileExport.h"

#include "base/ComponentError.h"
#include "base/Threads.h"
#include "component/render/ExportFolder.h"
#include "component/render/ExportText.h"
#include "component/render/MapDescription.h"
#include "component/render/MosaicText.h"
#include "component/render/TileWriters.h"
#include "component/render/ViewerPage.h"
#include "component/tiles/TileCodec.h"

#include <algorithm>
#include <utility>

namespace {

constexpr const char* DescriptionFile = "tiles.json";

/// No tiles.json of ours comes near this size.
constexpr std::size_t LargestDescription = std::size_t{16} << 20;

/// Making files is the kernel's work, which gains nothing from more threads than this.
constexpr int MostWriters = 4;

void RequireOwnFolder(const ExportFolder& folder, const ExportedMap& map) {
    const auto description = folder.Read(DescriptionFile, LargestDescription);
    if (!description)
        return;
    const auto identifier = IdentifierIn(*description);
    if (!identifier || identifier->empty() || *identifier != ValidUtf8(map.identifier))
        throw ComponentError(ErrorNumber::InvalidArgument,
                             "The folder \"" + folder.Path().string() + "\" holds the tiles of another map.");
}

/// The export of one map, step by step.
class Export {
public:
    Export(const ExportedMap& map, TileSource& source, const ExportFolder& folder, Progress& progress)
        : map_(map), layout_(map.layout), source_(source), folder_(folder), progress_(progress),
          kinds_(static_cast<std::size_t>(layout_.Entries())) {}

    void Run(int threads) {
        folder_.Replace(DescriptionFile, DescribeMap(map_, false));
        MakeFolders();
        WriteTiles(folder_, progress_, threads, [this](const auto& put) { ReadTiles(put); });
        WriteMosaics();
        const std::string description = DescribeMap(map_, true);
        folder_.Replace("index.html", ViewerPage(map_.name, description));
        folder_.Sync();
        progress_.ThrowIfCancelled();
        folder_.Replace(DescriptionFile, description);
    }

private:
    std::string FolderOf(int level) const { return std::to_string(layout_.Levels() - 1 - level); }
    std::string FolderOf(int level, std::int32_t column) const {
        return FolderOf(level) + "/" + std::to_string(column);
    }

    void MakeFolders() const {
        for (int level = 0; level < layout_.Levels(); ++level) {
            folder_.MakeFolder(FolderOf(level));
            for (std::int32_t column = 0; column < layout_.Level(level).columns; ++column) {
                progress_.ThrowIfCancelled();
                folder_.MakeFolder(FolderOf(level, column));
            }
        }
    }

    /// In the order in which a library keeps them, so that reading goes straight on.
    void ReadTiles(const std::function<void(TileFile)>& put) {
        for (int level = 0; level < layout_.Levels(); ++level)
            for (std::int32_t row = 0; row < layout_.Level(level).rows; ++row)
                for (std::int32_t column = 0; column < layout_.Level(level).columns; ++column)
                    put(ReadTile(level, row, column));
    }

    TileFile ReadTile(int level, std::int32_t row, std::int32_t column) {
        progress_.ThrowIfCancelled();
        std::vector<std::uint8_t> bytes = source_.ReadTile(level, row, column);
        const TileHeader header = TileDecoder::ReadHeader(bytes);
        if (header.width != layout_.TileWidth() || header.height != layout_.TileHeight())
            source_.RefuseTile(level, row, column, "its picture has another size");
        kinds_[static_cast<std::size_t>(layout_.Entry(level, row, column))] = KindOf(header);
        return {FolderOf(level, column) + "/" + std::to_string(row) + ".png", column, std::move(bytes)};
    }

    void WriteText(const std::string& name, const std::string& text) const {
        progress_.ThrowIfCancelled();
        folder_.Write(name, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }

    void WriteMosaics() const {
        const MosaicText mosaic(map_, kinds_);
        for (int level = 0; level < layout_.Levels(); ++level) {
            for (std::int32_t column = 0; column < layout_.Level(level).columns; ++column)
                WriteText(FolderOf(level, column) + "/column.vrt", mosaic.Column(level, column));
            if (level > 0)
                WriteText(FolderOf(level) + "/level.vrt", mosaic.Level(level));
        }
        WriteText("map.vrt", mosaic.Map());
    }

    const ExportedMap& map_;
    const PyramidLayout& layout_;
    TileSource& source_;
    const ExportFolder& folder_;
    Progress& progress_;
    TileKinds kinds_;
};

} // namespace

void ExportTiles(const ExportedMap& map, TileSource& source, const std::filesystem::path& path,
                 Progress& progress, int threads) {
    const ExportFolder folder(path);
    RequireOwnFolder(folder, map);
    Export(map, source, folder, progress).Run(std::min(ThreadCount(threads), MostWriters));
}
