#pragma once

#include "component/readers/tiff/TiffLayout.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

/// The rows of one strip or tile of any size, from the top, with numbers in the machine's byte order. The
/// block is never in memory as a whole, unless its coder leaves no other way.
class TiffBlock {
public:
    virtual ~TiffBlock() = default;
    /// The next row: TiffBlockRowBytes. Throws ImageDamaged, and what the file's pause throws.
    virtual void ReadRow(std::span<std::uint8_t> row) = 0;
};

/// Bytes of a row of a block of one plane.
std::int64_t TiffBlockRowBytes(const TiffLayout& layout);

/// Rows of the block that lie in the image.
std::int64_t TiffBlockRows(const TiffLayout& layout, std::uint32_t block);

/// Whether a writer has left the strip or tile out because nothing is in it; it reads as zeros.
bool IsTiffBlockLeftOut(const TiffFile& file, std::uint32_t block);

/// How many of the file's blocks can be open at a time within a sensible amount of memory; at least 1. Throws
/// ImageTooLarge where even one needs too much.
std::int64_t MostOpenTiffBlocks(const TiffFile& file, const TiffLayout& layout);

/// Opens a block that was not left out. Throws ImageDamaged, or ImageTooLarge where the coder needs all of
/// its pixels in memory and they are too many.
std::unique_ptr<TiffBlock> OpenTiffBlock(TiffFile& file, const TiffLayout& layout, std::uint32_t block,
                                         const std::filesystem::path& spoolFolder);
