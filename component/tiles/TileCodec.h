#pragma once

#include "base/Progress.h"
#include "component/PixelFormat.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

/// Pixels of one tile or icon in memory; rows of width × BytesPerPixel(format) bytes, `stride` bytes apart.
struct PixelView {
    const std::uint8_t* pixels = nullptr;
    std::ptrdiff_t stride = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    PixelFormat format = PixelFormat::Rgb;
    const Palette* palette = nullptr; ///< for PixelFormat::Palette
};

/// Writes tiles as PNG: one IDAT chunk, filter "sub" for RGB and RGBA, "none" for palette and grey, the
/// fastest deflate level. A palette tile carries the entries up to its own highest index only, so its palette
/// is the beginning of the map's. One object a thread: it keeps its buffers from tile to tile.
class TileEncoder {
public:
    TileEncoder();
    ~TileEncoder();
    TileEncoder(TileEncoder&&) noexcept;
    TileEncoder& operator=(TileEncoder&&) noexcept;

    /// The PNG file of the pixels; valid until the next call.
    std::span<const std::uint8_t> Encode(const PixelView& view);

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// What a stored PNG says of itself.
struct TileHeader {
    std::int32_t width = 0;
    std::int32_t height = 0;
    PixelFormat format = PixelFormat::Rgb;
    Palette palette; ///< for PixelFormat::Palette
};

/// Reads the PNG files that TileEncoder writes, and others of the same layout with any row filter and any
/// number of IDAT chunks. The chunks' CRCs are not computed: the store's digest covers the whole file, and
/// the compressed stream has a checksum of its own. One object a thread: it keeps its buffers.
class TileDecoder {
public:
    TileDecoder();
    ~TileDecoder();
    TileDecoder(TileDecoder&&) noexcept;
    TileDecoder& operator=(TileDecoder&&) noexcept;

    /// Size, format and palette, read without decoding a pixel. Throws FileDamaged on anything that
    /// TileEncoder would not have written.
    static TileHeader ReadHeader(std::span<const std::uint8_t> png);

    /// Decodes into rows of width × BytesPerPixel(header.format) bytes, `stride` bytes apart. The tile must
    /// have exactly the expected size; nothing is ever written beyond it. Throws FileDamaged.
    TileHeader Decode(std::span<const std::uint8_t> png, std::int32_t expectedWidth,
                      std::int32_t expectedHeight, std::uint8_t* rows, std::ptrdiff_t stride);

    /// Decodes into screen pixels (see Bitmap), `stride` words apart. Same rules.
    void DecodeToScreen(std::span<const std::uint8_t> png, std::int32_t expectedWidth,
                        std::int32_t expectedHeight, std::uint32_t* rows, std::ptrdiff_t stride);

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The PNG file of a picture that may be much larger than a tile, as TileEncoder writes it. The bytes of its
/// rows are added to the progress in steps, and a cancel is seen between them.
std::vector<std::uint8_t> EncodeInSteps(const PixelView& view, Progress& progress);
