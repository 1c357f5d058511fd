#pragma once

#include "base/Progress.h"
#include "component/storage/Belonging.h"
#include "component/storage/FileHeader.h"
#include "component/storage/LibraryState.h"

#include <set>

/// Where maps and icons lie after they were copied into another file.
struct LibraryWriterResult {
    struct PlacedMap {
        std::shared_ptr<MapState> map;
        std::vector<PageRef> pages;
    };
    struct PlacedIcon {
        std::shared_ptr<IconState> icon;
        BlobRef picture;
    };
    std::vector<PlacedMap> maps;
    std::vector<PlacedIcon> icons;
    /// Pictures and pages of removed maps and icons that were kept, because others name them too.
    std::int64_t keptForOthers = 0;

    /// Once the file has been committed: the copied maps and icons now lie in this container.
    void Apply(const std::shared_ptr<Container>& container);
};

/// Writes a library's state into a file inside the caller's transaction: what the file lacks or has in
/// another version is written, what it holds beyond the state is removed. The state itself stays as it is
/// until the result is applied, so that a failed or cancelled save changes nothing in memory.
class LibraryWriter {
public:
    /// `former` is what the file holds now: nothing for a new one. What maps or icons that are copied share
    /// with another one, as none should, each gets for itself, under numbers of `numbers`.
    LibraryWriter(std::shared_ptr<Container> target, RecordTable former, const LibraryState& state,
                  NumberSource& numbers);

    /// Work that Write adds to the progress: tiles to copy and records to look at.
    std::int64_t Work() const;
    /// `header` comes with its generation; version, next number, counts, root and description are filled in.
    void Write(FileHeader& header, Progress& progress);

    const RecordTable& Records() const { return records_; }
    LibraryWriterResult HandOverResult() { return std::move(placed_); }

private:
    void RemoveGoneRecords();
    bool IsGone(const RecordKey& key) const;
    Belonging Staying() const;
    void RemovePictures(const RecordKey& key, const Belonging& staying);
    Bytes FormerRecord(const RecordKey& key);
    void WriteMap(const std::shared_ptr<MapState>& map, Progress& progress);
    void WriteIcon(const std::shared_ptr<IconState>& icon);
    void WriteRecord(const RecordKey& key, ByteSpan plain);
    void WriteVersion(std::uint32_t version);
    void WriteHeader(FileHeader& header);

    std::shared_ptr<Container> target_;
    RecordTable former_;
    RecordTable records_;
    const LibraryState& state_;
    NumberSource& numbers_;
    Belonging copied_;
    std::set<std::int64_t> staying_; ///< numbers of the state's maps and icons
    LibraryWriterResult placed_;
};

/// Removes a map's tiles and directory pages from the container that holds them, except what stays with
/// others. Gives the number of those.
std::int64_t RemoveTiles(const std::shared_ptr<Container>& container, const MapRecord& record,
                         const Belonging& staying = {});

/// Copies an icon's picture into another container; as CopyTiles.
BlobRef CopyPicture(const IconState& icon, Container& to, NumberSource* fresh);
