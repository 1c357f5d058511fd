#include "component/library/MetadataEditing.h"

#include "base/ComponentError.h"

#include <algorithm>

namespace {

auto FindKey(MetadataList& metadata, const std::string& key) {
    return std::find_if(metadata.begin(), metadata.end(),
                        [&key](const auto& pair) { return pair.first == key; });
}

} // namespace

void SetMetadataValue(MetadataList& metadata, const std::string& key, const std::string& value) {
    std::size_t length = key.size() + value.size();
    for (const auto& [otherKey, otherValue] : metadata)
        if (otherKey != key)
            length += otherKey.size() + otherValue.size() + 8;
    if (length > LongestMetadata)
        throw ComponentError(ErrorNumber::InvalidArgument,
                             "The metadata of one map or icon may hold 16 megabytes at most.");
    if (const auto found = FindKey(metadata, key); found != metadata.end())
        found->second = value;
    else
        metadata.emplace_back(key, value);
}

void RemoveMetadataKey(MetadataList& metadata, const std::string& key) {
    if (const auto found = FindKey(metadata, key); found != metadata.end())
        metadata.erase(found);
}

const MetadataList::value_type& MetadataAt(const MetadataList& metadata, std::int32_t position) {
    if (position < 1 || static_cast<std::size_t>(position) > metadata.size())
        throw ComponentError(ErrorNumber::InvalidArgument,
                             "There is no metadata at position " + std::to_string(position) + ".");
    return metadata[static_cast<std::size_t>(position) - 1];
}
