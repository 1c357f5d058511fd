#pragma once

#include "component/tiles/PngChunks.h"
#include "component/tiles/TileCodec.h"

#include <cstdint>
#include <span>
#include <vector>

/// A PNG file taken apart, not yet inflated. Bit depth 8 in the colour types 0, 2, 3 and 6 without
/// interlacing, the palette before the pixels, critical chunks no others than the standard's own; chunks that
/// a reader may pass over are passed over. Anything else throws FileDamaged.
class PngTile {
public:
    /// The bytes must outlive the object.
    explicit PngTile(std::span<const std::uint8_t> png);

    const TileHeader& Header() const { return header_; }

    /// The zlib stream: the data of the IDAT chunk, or of several joined in `joined`.
    std::span<const std::uint8_t> Stream(std::vector<std::uint8_t>& joined) const;

private:
    void ReadSize(std::span<const std::uint8_t> data);
    void Read(const PngChunk& chunk);
    void ReadPalette(std::span<const std::uint8_t> data);
    void ReadAlpha(std::span<const std::uint8_t> data);

    TileHeader header_;
    std::vector<std::span<const std::uint8_t>> parts_;
    bool partsEnded_ = false;
};
