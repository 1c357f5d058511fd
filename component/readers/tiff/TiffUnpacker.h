#pragma once

#include "component/readers/tiff/TiffFile.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

/// The stored bytes of one strip or tile, piece by piece.
class TiffBytes {
public:
    /// The file must outlive the object.
    TiffBytes(TiffFile& file, std::uint32_t block);

    /// The next bytes, none at the end of the block or the file. They stay until the next call
    /// and as long as the object.
    std::span<const std::uint8_t> Next();
    [[noreturn]] void ThrowDamaged(const std::string& reason) const;

private:
    TiffFile* file_;
    std::int64_t at_;
    std::int64_t left_;
    std::vector<std::uint8_t> piece_;
};

/// Unpacks a strip or tile in portions of any length, whatever its size: libtiff takes the stored bytes of a
/// strip and the pixels of a tile into memory as wholes.
class TiffUnpacker {
public:
    virtual ~TiffUnpacker() = default;
    /// Fills the span or throws ImageDamaged.
    virtual void Read(std::span<std::uint8_t> bytes) = 0;
};

/// Nothing where the coder is none of those that are unpacked here: stored, PackBits, LZW, Deflate, ZSTD
/// and LZMA.
std::unique_ptr<TiffUnpacker> MakeTiffUnpacker(TiffFile& file, std::uint32_t block);
