#pragma once

#include "component/Georeference.h"
#include "component/PixelFormat.h"
#include "component/PyramidLayout.h"
#include "component/storage/Digest.h"

#include <string>
#include <utility>
#include <vector>

/// Where one tile or icon picture is stored.
struct BlobRef {
    static constexpr std::size_t EncodedSize = 32;

    std::int64_t number = 0;
    std::uint32_t length = 0; ///< stored bytes
    std::uint32_t codec = 1;  ///< 1: PNG
    Digest digest{};

    bool operator==(const BlobRef&) const = default;
};

/// Codec of a blob; the only one so far.
inline constexpr std::uint32_t PngCodec = 1;

/// Where one page of a map's tile directory is stored.
struct PageRef {
    std::int64_t number = 0;
    Digest digest{};

    bool operator==(const PageRef&) const = default;
};

/// Tiles in one directory page; the last page may hold fewer.
inline constexpr std::int64_t EntriesPerPage = 1000;

/// The number of directory pages of a map with so many tiles.
constexpr std::int64_t PagesFor(std::int64_t entries) {
    return (entries + EntriesPerPage - 1) / EntriesPerPage;
}

/// What a file keeps of a map beside its metadata and tiles.
struct MapRecord {
    std::string name; ///< as given when the map was added
    std::string identifier;
    PixelFormat format = PixelFormat::Rgb;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t tileWidth = 0;
    std::int32_t tileHeight = 0;
    Palette palette;
    double zoom = 1.0;
    Georeference georeference;
    std::vector<PageRef> pages;

    bool operator==(const MapRecord&) const = default;

    /// Of the record as it is encoded: 1, or 2 where that holds not all of it.
    std::uint8_t Version() const;
    PyramidLayout Layout() const { return {width, height, tileWidth, tileHeight}; }
    Bytes Encode() const;
    /// Every number is checked. Throws MalformedRecord.
    static MapRecord Decode(ByteSpan bytes);
};

/// Icons are drawn whole: more pixels than this are refused, in an image as in a file.
inline constexpr std::int64_t LargestIconPixels = std::int64_t{16} << 20;

/// What a file keeps of an icon beside its metadata.
struct IconRecord {
    std::string name; ///< as given when the icon was added
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t offsetX = 0;
    std::int32_t offsetY = 0;
    BlobRef picture;

    bool operator==(const IconRecord&) const = default;

    Bytes Encode() const;
    static IconRecord Decode(ByteSpan bytes);
};

/// Keys and values in the order in which the keys were first set; no key twice.
using MetadataList = std::vector<std::pair<std::string, std::string>>;

Bytes EncodeMetadata(const MetadataList& metadata);
MetadataList DecodeMetadata(ByteSpan bytes);

/// A page of a tile directory.
Bytes EncodePage(std::span<const BlobRef> entries);
std::vector<BlobRef> DecodePage(ByteSpan bytes);
