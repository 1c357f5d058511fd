// One stored tile: decoded at the size that its map says, in both ways.

#include "base/ComponentError.h"
#include "component/tiles/TileCodec.h"

namespace {

constexpr std::int64_t MostPixels = 1 << 20;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> png(data, size);
    try {
        const TileHeader header = TileDecoder::ReadHeader(png);
        const std::int64_t pixels = std::int64_t{header.width} * header.height;
        if (pixels > MostPixels)
            return 0;
        const std::ptrdiff_t stride = std::ptrdiff_t{header.width} * BytesPerPixel(header.format);
        std::vector<std::uint8_t> rows(static_cast<std::size_t>(stride * header.height));
        std::vector<std::uint32_t> screen(static_cast<std::size_t>(pixels));
        TileDecoder decoder;
        decoder.Decode(png, header.width, header.height, rows.data(), stride);
        decoder.DecodeToScreen(png, header.width, header.height, screen.data(), header.width);
    } catch (const ComponentError&) {
        // The orderly answer.
    }
    return 0;
}
