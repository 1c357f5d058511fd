#include "component/tiles/PngTile.h"

#include <limits>

namespace {

constexpr std::size_t HeaderBytes = 13;

PixelFormat FormatOf(std::uint8_t colour) {
    switch (static_cast<PngColour>(colour)) {
    case PngColour::Grey:
        return PixelFormat::Grey;
    case PngColour::Rgb:
        return PixelFormat::Rgb;
    case PngColour::Indexed:
        return PixelFormat::Palette;
    case PngColour::Rgba:
        return PixelFormat::Rgba;
    }
    ThrowTileDamaged("its colour type is none of those that are stored");
}

std::int32_t Side(std::uint32_t value) {
    if (value == 0 || value > std::uint32_t{std::numeric_limits<std::int32_t>::max()})
        ThrowTileDamaged("its size is not allowed");
    return static_cast<std::int32_t>(value);
}

} // namespace

PngTile::PngTile(std::span<const std::uint8_t> png) {
    PngChunkReader reader(png);
    const PngChunk first = reader.Next();
    if (first.type != PngIhdr)
        ThrowTileDamaged("its header is missing");
    ReadSize(first.data);
    for (PngChunk chunk = reader.Next(); chunk.type != PngIend; chunk = reader.Next())
        Read(chunk);
    if (parts_.empty())
        ThrowTileDamaged("it has no pixels");
    if (!reader.AtEnd())
        ThrowTileDamaged("something follows its end");
}

void PngTile::ReadSize(std::span<const std::uint8_t> data) {
    if (data.size() != HeaderBytes)
        ThrowTileDamaged("its header has the wrong length");
    header_.width = Side(PngRead32(data));
    header_.height = Side(PngRead32(data.subspan(4)));
    if (data[8] != 8 || data[10] != 0 || data[11] != 0 || data[12] != 0)
        ThrowTileDamaged("its header names a layout that is not stored");
    header_.format = FormatOf(data[9]);
}

void PngTile::Read(const PngChunk& chunk) {
    if (chunk.type == PngIdat) {
        if (partsEnded_)
            ThrowTileDamaged("its pixels are torn apart");
        if (parts_.empty() && header_.format == PixelFormat::Palette && header_.palette.empty())
            ThrowTileDamaged("its palette is missing");
        parts_.push_back(chunk.data);
        return;
    }
    partsEnded_ = !parts_.empty();
    if (chunk.type == PngPlte)
        ReadPalette(chunk.data);
    else if (chunk.type == PngTrns)
        ReadAlpha(chunk.data);
    else if (!chunk.IsAncillary())
        ThrowTileDamaged("it has a chunk of unknown meaning");
}

void PngTile::ReadPalette(std::span<const std::uint8_t> data) {
    if (header_.format != PixelFormat::Palette || !header_.palette.empty() || partsEnded_)
        ThrowTileDamaged("a palette stands where none belongs");
    if (data.empty() || data.size() % 3 != 0 || data.size() > 3 * std::size_t{256})
        ThrowTileDamaged("its palette has the wrong length");
    header_.palette.resize(data.size() / 3);
    for (std::size_t i = 0; i < header_.palette.size(); ++i)
        header_.palette[i] = PaletteEntry{data[3 * i], data[3 * i + 1], data[3 * i + 2], 255};
}

void PngTile::ReadAlpha(std::span<const std::uint8_t> data) {
    // With grey and true colour this chunk would make one colour transparent, which no stored image does.
    if (header_.palette.empty() || partsEnded_ || data.size() > header_.palette.size())
        ThrowTileDamaged("transparency stands where none belongs");
    for (std::size_t i = 0; i < data.size(); ++i)
        header_.palette[i].alpha = data[i];
}

std::span<const std::uint8_t> PngTile::Stream(std::vector<std::uint8_t>& joined) const {
    if (parts_.size() == 1)
        return parts_.front();
    joined.clear();
    for (const std::span<const std::uint8_t> part : parts_)
        joined.insert(joined.end(), part.begin(), part.end());
    return joined;
}
