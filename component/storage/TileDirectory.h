#pragma once

#include "base/Progress.h"
#include "component/storage/Container.h"
#include "component/storage/Records.h"
#include "component/tiles/TileStore.h"

#include <list>
#include <map>
#include <mutex>
#include <unordered_map>

/// Reads a map's tiles through its directory. A look at the map reads few pages; the last ones used are
/// kept. May be used by several threads at once.
class TileReader : public TileSource {
public:
    /// `mapName` is the name that error sentences give.
    TileReader(std::shared_ptr<Container> container, PyramidLayout layout, std::vector<PageRef> pages,
               std::string mapName);

    std::vector<std::uint8_t> ReadTile(int level, std::int32_t row, std::int32_t column) override;
    [[noreturn]] void RefuseTile(int level, std::int32_t row, std::int32_t column,
                                 const std::string& reason) const override;

    /// The entry of a tile, by its position in the count over all levels.
    BlobRef Entry(std::int64_t entry);
    /// The plain bytes of a tile by its entry.
    Bytes ReadEntry(std::int64_t entry);
    /// The bytes as stored, their digest compared; a sealed blob is not opened.
    Bytes ReadStored(std::int64_t entry);
    /// "Map 'North', level 0, row 3, column 4".
    std::string Place(std::int64_t entry) const;

private:
    Bytes ReadStored(std::int64_t entry, const BlobRef& ref);
    const std::vector<BlobRef>& Page(std::int64_t index);
    std::vector<BlobRef> LoadPage(std::int64_t index);
    [[noreturn]] void Damaged(const std::string& what) const;

    std::shared_ptr<Container> container_;
    PyramidLayout layout_;
    std::vector<PageRef> pages_;
    std::string mapName_;
    std::unique_ptr<std::mutex> mutex_;                             ///< of the pages kept
    std::list<std::pair<std::int64_t, std::vector<BlobRef>>> kept_; ///< last used first
};

/// Stores a map's tiles while they are built and writes its directory at the end. Identical tiles share one
/// blob.
class TileWriter : public TileSink {
public:
    TileWriter(Container& container, NumberSource& numbers, const PyramidLayout& layout);

    void Put(int level, std::int32_t row, std::int32_t column,
             std::span<const std::uint8_t> encoded) override;
    /// Writes the directory pages once every tile has been put.
    std::vector<PageRef> Finish();

private:
    struct DigestHash {
        std::size_t operator()(const Digest& digest) const;
    };

    Container& container_;
    NumberSource& numbers_;
    PyramidLayout layout_;
    std::uint64_t seed_ = 0;
    std::mutex mutex_;
    std::vector<BlobRef> entries_;
    std::unordered_map<Digest, std::int64_t, DigestHash> entryOf_; ///< content → first entry with it
};

/// Writes directory pages under fresh numbers.
std::vector<PageRef> WritePages(Container& container, NumberSource& numbers,
                                std::span<const BlobRef> entries);

/// Copies a map's tiles into another container and gives the directory as it stands there. Blobs and pages
/// are copied as they are when both containers have the same envelope and the numbers may stay
/// (`fresh` is nothing); otherwise they are opened and closed anew under fresh numbers, or their own when
/// only the envelope differs. Every tile is checked against its digest. Progress counts tiles.
std::vector<PageRef> CopyTiles(TileReader& source, Container& from, const PyramidLayout& layout,
                               const std::vector<PageRef>& pages, Container& to, NumberSource* fresh,
                               Progress& progress);
