#pragma once

#include <cstdint>
#include <string>

/// Key/value texts (UTF-8) of a map or an icon, in the order in which the keys were first set. Keys compare
/// byte for byte.
class Metadata {
public:
    virtual ~Metadata() = default;

    /// The value, empty when the key is absent.
    virtual std::string GetMetadata(const std::string& key) const = 0;
    virtual void SetMetadata(const std::string& key, const std::string& value) = 0;
    /// Does nothing when the key is absent.
    virtual void RemoveMetadata(const std::string& key) = 0;

    virtual std::int32_t MetadataCount() const = 0;
    /// Positions count from 1. InvalidArgument outside 1 to MetadataCount.
    virtual std::string MetadataKeyAt(std::int32_t position) const = 0;
    virtual std::string MetadataValueAt(std::int32_t position) const = 0;
};
