#include "component/storage/TileForm.h"

#include "base/ComponentError.h"

#include <algorithm>

namespace {

[[noreturn]] void Odd(const char* reason) {
    throw ComponentError(ErrorNumber::FileDamaged, reason);
}

bool IsBeginOf(const Palette& part, const Palette& whole) {
    return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

} // namespace

TileHeader DecodeWhole(TileDecoder& decoder, std::span<const std::uint8_t> png, std::int32_t width,
                       std::int32_t height, std::vector<std::uint8_t>& pixels) {
    const TileHeader header = TileDecoder::ReadHeader(png);
    if (header.width != width || header.height != height)
        Odd("its picture has another size.");
    const std::size_t rowBytes =
        static_cast<std::size_t>(width) * static_cast<std::size_t>(BytesPerPixel(header.format));
    pixels.resize(rowBytes * static_cast<std::size_t>(height));
    decoder.Decode(png, width, height, pixels.data(), static_cast<std::ptrdiff_t>(rowBytes));
    return header;
}

TileForm::TileForm(const MapRecord& record) : record_(record), layout_(record.Layout()) {}

PixelFormat TileForm::FormatOf(int level, std::int32_t row, std::int32_t column) const {
    if (layout_.IsEdgeTile(level, row, column))
        return PixelFormat::Rgba;
    if (level == 0 || record_.format != PixelFormat::Palette)
        return record_.format;
    const bool isOpaque = std::all_of(record_.palette.begin(), record_.palette.end(),
                                      [](const PaletteEntry& colour) { return colour.alpha == 255; });
    return isOpaque ? PixelFormat::Rgb : PixelFormat::Rgba;
}

void TileForm::Check(std::span<const std::uint8_t> png, std::int64_t entry) {
    const TileHeader header = DecodeWhole(decoder_, png, layout_.TileWidth(), layout_.TileHeight(), pixels_);
    int level = 0;
    while (level + 1 < layout_.Levels() && layout_.Level(level + 1).firstEntry <= entry)
        ++level;
    const std::int64_t index = entry - layout_.Level(level).firstEntry;
    const std::int32_t columns = layout_.Level(level).columns;
    if (header.format != FormatOf(level, static_cast<std::int32_t>(index / columns),
                                  static_cast<std::int32_t>(index % columns)))
        Odd("its picture has other pixels than the map.");
    if (header.format == PixelFormat::Palette && !IsBeginOf(header.palette, record_.palette))
        Odd("its picture has another palette than the map.");
}
