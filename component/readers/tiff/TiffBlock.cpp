#include "component/readers/tiff/TiffBlock.h"

#include "component/readers/common/ImageError.h"
#include "component/readers/tiff/TiffBlockKinds.h"
#include "component/readers/tiff/TiffNames.h"

#include <algorithm>

namespace {

std::int64_t BlocksDown(const TiffLayout& layout) {
    return (layout.height + layout.blockHeight - 1) / layout.blockHeight;
}

std::int64_t BlocksAcross(const TiffLayout& layout) {
    return (layout.width + layout.blockWidth - 1) / layout.blockWidth;
}

std::uint16_t CompressionOf(const TiffFile& file) {
    return file.Tag16(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
}

/// Most memory that a block takes while it is open, beside its row.
std::int64_t MemoryOfBlock(const TiffFile& file, const TiffLayout& layout) {
    constexpr std::int64_t Kibi = 1024, Mebi = 1024 * Kibi;
    switch (CompressionOf(file)) {
    case COMPRESSION_NONE:
    case COMPRESSION_PACKBITS:
    case COMPRESSION_LZW:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
        return 128 * Kibi;
    case COMPRESSION_ZSTD:
    case COMPRESSION_LZMA:
        return 128 * Mebi; // the longest distances
    case COMPRESSION_JPEG:
        return std::min(layout.SamplesTogether() * 32 * Mebi, MostBlockMemory); // in case of several scans
    default:
        return MemoryOfBlockAsStrip(file, layout);
    }
}

} // namespace

std::int64_t TiffBlockRowBytes(const TiffLayout& layout) {
    return (layout.blockWidth * layout.SamplesTogether() * layout.bits + 7) / 8;
}

std::int64_t TiffBlockRows(const TiffLayout& layout, std::uint32_t block) {
    const std::int64_t down = block / BlocksAcross(layout) % BlocksDown(layout);
    return std::min<std::int64_t>(layout.blockHeight, layout.height - down * layout.blockHeight);
}

bool IsTiffBlockLeftOut(const TiffFile& file, std::uint32_t block) {
    return TIFFGetStrileOffset(file.Handle(), block) == 0 &&
           TIFFGetStrileByteCount(file.Handle(), block) == 0;
}

std::int64_t LongestStoredTiffBlock(const TiffFile& file) {
    const std::uint32_t blocks = TIFFIsTiled(file.Handle()) != 0 ? TIFFNumberOfTiles(file.Handle())
                                                                 : TIFFNumberOfStrips(file.Handle());
    std::uint64_t longest = 0;
    for (std::uint32_t block = 0; block < blocks; ++block)
        longest = std::max<std::uint64_t>(longest, TIFFGetStrileByteCount(file.Handle(), block));
    return static_cast<std::int64_t>(
        std::min<std::uint64_t>(longest, static_cast<std::uint64_t>(file.Size())));
}

void ThrowBlockTooLarge(const TiffFile& file) {
    ThrowImageError(ErrorNumber::ImageTooLarge, file.Path(),
                    "its strips or tiles are larger than the program accepts in their compression (" +
                        TiffCompressionText(CompressionOf(file)) + ")");
}

std::int64_t MostOpenTiffBlocks(const TiffFile& file, const TiffLayout& layout) {
    const std::int64_t memory = MemoryOfBlock(file, layout);
    if (memory > MostBlockMemory)
        ThrowBlockTooLarge(file);
    return MostBlockMemory / memory;
}

std::unique_ptr<TiffBlock> OpenTiffBlock(TiffFile& file, const TiffLayout& layout, std::uint32_t block,
                                         const std::filesystem::path& spoolFolder) {
    switch (CompressionOf(file)) {
    case COMPRESSION_JPEG:
        return OpenJpegBlock(file, layout, block, spoolFolder);
    case COMPRESSION_WEBP:
        return OpenWebpBlock(file, layout, block);
    default:
        break;
    }
    if (std::unique_ptr<TiffBlock> unpacked = TryOpenUnpackedBlock(file, layout, block))
        return unpacked;
    return OpenBlockAsStrip(file, layout, block);
}
