#pragma once

#include "component/PixelFormat.h"
#include "component/readers/common/ImageFile.h"

#include <array>
#include <cstdint>

/// How the pixels of a BMP file are packed.
enum class BmpPacking {
    Plain,
    BitFields,  ///< plain, with masks that say which bits are which colour
    RunLengths, ///< RLE4, RLE8 or RLE24
};

/// What a BMP file says before its pixels, checked.
struct BmpHeader {
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool downwards = false; ///< the first stored row is the top one
    int bits = 0;           ///< a pixel: 1, 2, 4, 8, 16, 24 or 32
    BmpPacking packing = BmpPacking::Plain;
    /// Masks of red, green, blue and alpha in a pixel of 16 or 32 bits; alpha 0: there is none.
    std::array<std::uint32_t, 4> masks{};
    Palette palette;             ///< up to 8 bits: an entry for every index
    std::int64_t firstPixel = 0; ///< where the stored pixels begin, in bytes from the file's begin

    /// Bytes of a stored row; rows are filled up to a multiple of four.
    std::int64_t StoredRowBytes() const { return (std::int64_t{width} * bits + 31) / 32 * 4; }
    /// Bytes of a stored row that hold pixels.
    std::int64_t UsedRowBytes() const { return (std::int64_t{width} * bits + 7) / 8; }
};

/// Reads the header of a Windows (versions 3, 4, 5 and between) or OS/2 (1.x, 2.x) bitmap.
/// Throws ImageNotReadable for kinds that are not read, ImageDamaged, ImageTooLarge.
BmpHeader ReadBmpHeader(ImageFile& file);
