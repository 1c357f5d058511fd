#pragma once

#include "component/PyramidLayout.h"
#include "component/storage/Records.h"
#include "component/tiles/TileCodec.h"

/// Decodes a map's stored pictures and compares them with what the map's record says of them: a right digest
/// only says that they are what was stored. One object a thread.
class TileForm {
public:
    explicit TileForm(const MapRecord& record);

    /// Throws FileDamaged, saying what is wrong with the picture.
    void Check(std::span<const std::uint8_t> png, std::int64_t entry);

private:
    PixelFormat FormatOf(int level, std::int32_t row, std::int32_t column) const;

    const MapRecord& record_;
    PyramidLayout layout_;
    TileDecoder decoder_;
    std::vector<std::uint8_t> pixels_;
};

/// Decodes a picture of this size and gives its header. Throws FileDamaged.
TileHeader DecodeWhole(TileDecoder& decoder, std::span<const std::uint8_t> png, std::int32_t width,
                       std::int32_t height, std::vector<std::uint8_t>& pixels);
