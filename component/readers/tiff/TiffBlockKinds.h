#pragma once

#include "component/readers/tiff/TiffBlock.h"

// The kinds of blocks that OpenTiffBlock chooses from.

/// The pieces of memory that blocks may take together, in bytes.
inline constexpr std::int64_t MostBlockMemory = std::int64_t{448} << 20;

/// What all blocks of an image have at most as stored bytes.
std::int64_t LongestStoredTiffBlock(const TiffFile& file);

/// Throws ImageTooLarge, naming the coder.
[[noreturn]] void ThrowBlockTooLarge(const TiffFile& file);

/// Unpacked by this program (see TiffUnpacker.h); nothing where the coder, the samples or their order are of
/// a kind that only libtiff unpacks.
std::unique_ptr<TiffBlock> TryOpenUnpackedBlock(TiffFile& file, const TiffLayout& layout,
                                                std::uint32_t block);

/// JPEG data: a few rows in memory, or of several scans JpegWindowBytes for each component.
std::unique_ptr<TiffBlock> OpenJpegBlock(TiffFile& file, const TiffLayout& layout, std::uint32_t block,
                                         const std::filesystem::path& spoolFolder);

/// WebP data, which stand in memory as they are stored and as pixels, and are decoded piece by piece.
std::unique_ptr<TiffBlock> OpenWebpBlock(TiffFile& file, const TiffLayout& layout, std::uint32_t block);

/// Any other coder: libtiff reads strips row by row, tiles never, so that the block becomes the one strip of
/// a TIFF file of its own. Its stored bytes stand in memory; of some coders the pixels, too.
std::unique_ptr<TiffBlock> OpenBlockAsStrip(TiffFile& file, const TiffLayout& layout, std::uint32_t block);

/// Most memory that such a strip takes.
std::int64_t MemoryOfBlockAsStrip(const TiffFile& file, const TiffLayout& layout);
