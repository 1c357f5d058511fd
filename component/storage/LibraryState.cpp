#include "component/storage/LibraryState.h"

#include "component/storage/ByteCodec.h"
#include "component/storage/FileHeader.h"

#include <algorithm>

std::uint32_t FormatVersionOf(const LibraryState& state) {
    std::uint32_t version = FirstFormatVersion;
    for (const auto& map : state.maps)
        version = std::max(version, std::uint32_t{map->record.Version()});
    return version;
}

std::string MetadataValue(const MetadataList& metadata, const std::string& key) {
    const auto found = std::find_if(metadata.begin(), metadata.end(),
                                    [&key](const auto& pair) { return pair.first == key; });
    return found != metadata.end() ? found->second : std::string();
}

namespace {

std::string NameOf(const MetadataList& metadata, const std::string& ownName) {
    const std::string name = MetadataValue(metadata, "name");
    return name.empty() ? ownName : name;
}

} // namespace

std::string MapState::Name() const {
    return NameOf(metadata, record.name);
}

std::string IconState::Name() const {
    return NameOf(metadata, record.name);
}

Bytes RecordListOf(const RecordTable& records) {
    ByteWriter writer;
    for (const auto& [key, digests] : records) {
        writer.Integer(static_cast<std::uint8_t>(key.first));
        writer.Integer(key.second);
        writer.Raw(digests.stored);
    }
    return writer.Written();
}
