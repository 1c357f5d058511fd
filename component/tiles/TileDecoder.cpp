#include "component/tiles/TileCodec.h"

#include "base/ComponentError.h"
#include "component/tiles/PngChunks.h"
#include "component/tiles/PngFilters.h"
#include "component/tiles/PngTile.h"
#include "component/tiles/ScreenPixels.h"
#include "component/tiles/TileStore.h"

#include <libdeflate.h>

#include <algorithm>
#include <new>

namespace {

struct FreeDecompressor {
    void operator()(libdeflate_decompressor* inflater) const { libdeflate_free_decompressor(inflater); }
};

/// Deflate's best: 258 bytes for two bits. What claims to hold more is refused before memory is asked for.
constexpr std::uint64_t MostExpansion = 1032;

void CheckSize(const TileHeader& header, std::int32_t width, std::int32_t height) {
    if (header.width != width || header.height != height)
        ThrowTileDamaged("its size is not the expected one");
}

void CheckIndices(const TileHeader& header, std::span<const std::uint8_t> row) {
    if (header.format == PixelFormat::Palette && header.palette.size() < 256 &&
        *std::max_element(row.begin(), row.end()) >= header.palette.size())
        ThrowTileDamaged("a pixel has no entry in its palette");
}

} // namespace

struct TileDecoder::State {
    std::unique_ptr<libdeflate_decompressor, FreeDecompressor> inflater{libdeflate_alloc_decompressor()};
    std::vector<std::uint8_t> joined;
    std::vector<std::uint8_t> filtered;

    void Inflate(const PngTile& tile, std::size_t rowBytes);
    template <typename Target>
    void UnfilterRows(const TileHeader& header, const Target& target);
    bool HasOnlySubRows(std::size_t rowBytes) const;
};

bool TileDecoder::State::HasOnlySubRows(std::size_t rowBytes) const {
    for (std::size_t at = 0; at < filtered.size(); at += rowBytes + 1)
        if (filtered[at] != static_cast<std::uint8_t>(PngFilter::Sub))
            return false;
    return true;
}

/// Fills `filtered` with exactly the tile's rows, each after its filter's byte.
void TileDecoder::State::Inflate(const PngTile& tile, std::size_t rowBytes) {
    const std::span<const std::uint8_t> stream = tile.Stream(joined);
    const std::uint64_t size =
        (std::uint64_t{rowBytes} + 1) * static_cast<std::uint64_t>(tile.Header().height);
    if (size / MostExpansion > stream.size())
        ThrowTileDamaged("it holds fewer pixels than its size says");
    filtered.resize(size);
    std::size_t used = 0;
    // Without a place for the number of bytes made, the inflater insists on filling the buffer exactly.
    const libdeflate_result result = libdeflate_zlib_decompress_ex(
        inflater.get(), stream.data(), stream.size(), filtered.data(), filtered.size(), &used, nullptr);
    if (result != LIBDEFLATE_SUCCESS || used != stream.size())
        ThrowTileDamaged("its pixels cannot be unpacked");
}

/// Undoes the filters row by row; `target(y)` is where row y goes.
template <typename Target>
void TileDecoder::State::UnfilterRows(const TileHeader& header, const Target& target) {
    const auto step = static_cast<std::size_t>(BytesPerPixel(header.format));
    const std::size_t rowBytes = static_cast<std::size_t>(header.width) * step;
    std::span<const std::uint8_t> above;
    std::uint8_t* from = filtered.data();
    for (std::int32_t y = 0; y < header.height; ++y, from += rowBytes + 1) {
        std::uint8_t* to = target.Row(y, from + 1);
        if (!Unfilter(*from, {from + 1, rowBytes}, above, step, to))
            ThrowTileDamaged("a row names a filter that does not exist");
        above = {to, rowBytes};
        CheckIndices(header, above);
        target.Done(y, above);
    }
}

namespace {

/// Rows go straight to the caller's pixels.
struct NativeTarget {
    std::uint8_t* rows;
    std::ptrdiff_t stride;

    std::uint8_t* Row(std::int32_t y, std::uint8_t*) const { return rows + y * stride; }
    void Done(std::int32_t, std::span<const std::uint8_t>) const {}
};

/// Rows are undone where they lie and, still hot, turned into words.
struct ScreenTarget {
    std::uint32_t* rows;
    std::ptrdiff_t stride;
    const TileHeader& header;
    const ScreenTable& table;

    std::uint8_t* Row(std::int32_t, std::uint8_t* inPlace) const { return inPlace; }
    void Done(std::int32_t y, std::span<const std::uint8_t> row) const {
        RowToScreen(row.data(), header.format, table,
                    {rows + y * stride, static_cast<std::size_t>(header.width)});
    }
};

std::size_t RowBytes(const TileHeader& header) {
    return static_cast<std::size_t>(header.width) * static_cast<std::size_t>(BytesPerPixel(header.format));
}

} // namespace

void TileSource::RefuseTile(int, std::int32_t, std::int32_t, const std::string& reason) const {
    throw ComponentError(ErrorNumber::FileDamaged, reason);
}

TileDecoder::TileDecoder() : state_(std::make_unique<State>()) {
    if (!state_->inflater)
        throw std::bad_alloc();
}
TileDecoder::~TileDecoder() = default;
TileDecoder::TileDecoder(TileDecoder&&) noexcept = default;
TileDecoder& TileDecoder::operator=(TileDecoder&&) noexcept = default;

TileHeader TileDecoder::ReadHeader(std::span<const std::uint8_t> png) {
    return PngTile(png).Header();
}

TileHeader TileDecoder::Decode(std::span<const std::uint8_t> png, std::int32_t expectedWidth,
                               std::int32_t expectedHeight, std::uint8_t* rows, std::ptrdiff_t stride) {
    const PngTile tile(png);
    CheckSize(tile.Header(), expectedWidth, expectedHeight);
    state_->Inflate(tile, RowBytes(tile.Header()));
    state_->UnfilterRows(tile.Header(), NativeTarget{rows, stride});
    return tile.Header();
}

void TileDecoder::DecodeToScreen(std::span<const std::uint8_t> png, std::int32_t expectedWidth,
                                 std::int32_t expectedHeight, std::uint32_t* rows, std::ptrdiff_t stride) {
    const PngTile tile(png);
    const TileHeader& header = tile.Header();
    CheckSize(header, expectedWidth, expectedHeight);
    const std::size_t rowBytes = RowBytes(header);
    state_->Inflate(tile, rowBytes);
    if (header.format == PixelFormat::Rgb && state_->HasOnlySubRows(rowBytes)) {
        const std::uint8_t* row = state_->filtered.data() + 1;
        for (std::int32_t y = 0; y < header.height; ++y, row += rowBytes + 1)
            RgbDifferencesToScreen(row, {rows + y * stride, static_cast<std::size_t>(header.width)});
        return;
    }
    const ScreenTable table =
        header.format == PixelFormat::Palette ? PaletteScreenTable(header.palette) : GreyScreenTable();
    state_->UnfilterRows(header, ScreenTarget{rows, stride, header, table});
}
