#pragma once

#include "component/storage/LibraryState.h"

// What the metadata operations of maps and icons do to a list of keys and values.

/// Longest key and value together, in bytes: a record must stay readable with bounded memory.
inline constexpr std::size_t LongestMetadata = std::size_t{16} << 20;

/// A new key comes last. InvalidArgument when it would be longer than LongestMetadata.
void SetMetadataValue(MetadataList& metadata, const std::string& key, const std::string& value);
void RemoveMetadataKey(MetadataList& metadata, const std::string& key);
/// Positions count from 1. InvalidArgument outside the list.
const MetadataList::value_type& MetadataAt(const MetadataList& metadata, std::int32_t position);
