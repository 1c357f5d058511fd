#include "component/tiles/TileCodec.h"

#include "base/ComponentError.h"
#include "component/tiles/Deflater.h"
#include "component/tiles/PngChunks.h"
#include "component/tiles/PngFilters.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// What is kept from picture to picture.
struct EncoderBuffers {
    Deflater deflater;
    std::vector<std::uint8_t> filtered;
    std::vector<std::uint8_t> png;
};

/// Large enough for any tile or icon, and small enough for the compressor's 32-bit lengths.
constexpr std::int64_t MostBytes = std::int64_t{1} << 30;

PngColour ColourOf(PixelFormat format) {
    switch (format) {
    case PixelFormat::Grey:
        return PngColour::Grey;
    case PixelFormat::Palette:
        return PngColour::Indexed;
    case PixelFormat::Rgb:
        return PngColour::Rgb;
    case PixelFormat::Rgba:
        return PngColour::Rgba;
    }
    throw ComponentError(ErrorNumber::InvalidArgument, "There is no such pixel format.");
}

std::span<const std::uint8_t> RowOf(const PixelView& view, std::int32_t y) {
    return {view.pixels + y * view.stride,
            static_cast<std::size_t>(view.width) * static_cast<std::size_t>(BytesPerPixel(view.format))};
}

void CheckView(const PixelView& view) {
    if (view.width < 1 || view.height < 1 || view.pixels == nullptr ||
        (std::int64_t{view.width} * BytesPerPixel(view.format) + 1) > MostBytes / view.height)
        throw ComponentError(ErrorNumber::InvalidArgument, "A tile or icon must have a sensible size.");
    if (view.format == PixelFormat::Palette &&
        (view.palette == nullptr || view.palette->empty() || view.palette->size() > 256))
        throw ComponentError(ErrorNumber::InvalidArgument, "A palette must have 1 to 256 entries.");
}

void AppendHeader(PngChunkWriter& writer, const PixelView& view) {
    const auto byte = [](std::int32_t value, int shift) { return static_cast<std::uint8_t>(value >> shift); };
    const std::array<std::uint8_t, 13> header{
        byte(view.width, 24),
        byte(view.width, 16),
        byte(view.width, 8),
        byte(view.width, 0),
        byte(view.height, 24),
        byte(view.height, 16),
        byte(view.height, 8),
        byte(view.height, 0),
        8, // bits a sample
        static_cast<std::uint8_t>(ColourOf(view.format)),
        0, // the one compression method, the one set of filters, no interlacing
        0,
        0};
    writer.Append(PngIhdr, header);
}

/// How many palette entries the tile needs: those after its highest index would only cost bytes.
std::size_t EntriesUsed(const PixelView& view) {
    std::uint8_t highest = 0;
    for (std::int32_t y = 0; y < view.height; ++y)
        for (const std::uint8_t index : RowOf(view, y))
            highest = std::max(highest, index);
    if (highest >= view.palette->size())
        throw ComponentError(ErrorNumber::InvalidArgument, "A pixel has no entry in the palette.");
    return std::size_t{highest} + 1;
}

void AppendPalette(PngChunkWriter& writer, const PixelView& view) {
    const std::span<const PaletteEntry> entries(view.palette->data(), EntriesUsed(view));
    std::array<std::uint8_t, 3 * std::size_t{256}> colours{};
    std::array<std::uint8_t, 256> alphas{};
    std::size_t alphaCount = 0; // up to the last entry that is not opaque
    for (std::size_t i = 0; i < entries.size(); ++i) {
        colours[3 * i] = entries[i].red;
        colours[3 * i + 1] = entries[i].green;
        colours[3 * i + 2] = entries[i].blue;
        alphas[i] = entries[i].alpha;
        if (entries[i].alpha != 255)
            alphaCount = i + 1;
    }
    writer.Append(PngPlte, std::span(colours).first(3 * entries.size()));
    if (alphaCount != 0)
        writer.Append(PngTrns, std::span(alphas).first(alphaCount));
}

/// Neighbouring true colours differ little, so their differences compress best; indices and the greys of
/// scanned line work compress best as they are.
void FilterRows(const PixelView& view, std::vector<std::uint8_t>& filtered) {
    const auto step = static_cast<std::size_t>(BytesPerPixel(view.format));
    const std::size_t rowBytes = RowOf(view, 0).size();
    filtered.resize((rowBytes + 1) * static_cast<std::size_t>(view.height));
    std::uint8_t* out = filtered.data();
    for (std::int32_t y = 0; y < view.height; ++y, out += rowBytes + 1) {
        const std::span<const std::uint8_t> row = RowOf(view, y);
        if (step == 1) {
            *out = static_cast<std::uint8_t>(PngFilter::None);
            std::copy(row.begin(), row.end(), out + 1);
        } else {
            *out = static_cast<std::uint8_t>(PngFilter::Sub);
            FilterSub(row, step, out + 1);
        }
    }
}

/// Answers the length of the file in `buffers.png`.
std::size_t EncodeInto(EncoderBuffers& buffers, const PixelView& view, Progress* progress) {
    CheckView(view);
    PngChunkWriter writer(buffers.png);
    AppendHeader(writer, view);
    if (view.format == PixelFormat::Palette)
        AppendPalette(writer, view);
    FilterRows(view, buffers.filtered);
    const std::span<std::uint8_t> room =
        writer.Open(PngIdat, buffers.deflater.Bound(buffers.filtered.size()));
    writer.Close(buffers.deflater.Compress(buffers.filtered, room, progress));
    writer.Append(PngIend, {});
    return writer.Size();
}

} // namespace

struct TileEncoder::State {
    EncoderBuffers buffers;
};

TileEncoder::TileEncoder() : state_(std::make_unique<State>()) {}
TileEncoder::~TileEncoder() = default;
TileEncoder::TileEncoder(TileEncoder&&) noexcept = default;
TileEncoder& TileEncoder::operator=(TileEncoder&&) noexcept = default;

std::span<const std::uint8_t> TileEncoder::Encode(const PixelView& view) {
    const std::size_t size = EncodeInto(state_->buffers, view, nullptr);
    return {state_->buffers.png.data(), size};
}

std::vector<std::uint8_t> EncodeInSteps(const PixelView& view, Progress& progress) {
    EncoderBuffers buffers;
    buffers.png.resize(EncodeInto(buffers, view, &progress));
    return std::move(buffers.png);
}
