#pragma once

#include "component/Orientation.h"
#include "component/storage/Container.h"
#include "component/storage/Records.h"

#include <map>

/// One map as it stands in memory; its tiles lie in the container.
struct MapState {
    std::int64_t id = 0;
    MapRecord record;
    MetadataList metadata;
    std::shared_ptr<Container> container;
    Orientation turn = Orientation::TopLeft; ///< of the image file it was added from; not stored

    /// The "name" metadata; when that is empty, the name given when the map was added.
    std::string Name() const;
};

/// One icon likewise; its picture lies in the container.
struct IconState {
    std::int64_t id = 0;
    IconRecord record;
    MetadataList metadata;
    std::shared_ptr<Container> container;

    std::string Name() const;
};

/// All maps and icons of a library in their order, which is that of their numbers.
struct LibraryState {
    std::vector<std::shared_ptr<MapState>> maps;
    std::vector<std::shared_ptr<IconState>> icons;
};

/// The version of a file that holds these maps.
std::uint32_t FormatVersionOf(const LibraryState& state);

/// The value of a key, empty when it is absent.
std::string MetadataValue(const MetadataList& metadata, const std::string& key);

/// Which record a row is: a map's, an icon's, or the metadata of the map or icon of the same number.
using RecordKey = std::pair<BlobKind, std::int64_t>;

/// What a library file holds under a record key.
struct RecordDigests {
    Digest stored{}; ///< as in the digest tree
    Digest plain{};  ///< of the plain record, to tell whether it has changed since
};

using RecordTable = std::map<RecordKey, RecordDigests>;

/// The digest tree's list: every record's kind, number and digest, ordered by kind and number.
Bytes RecordListOf(const RecordTable& records);
