#include "component/render/TileLoader.h"

#include "base/ComponentError.h"
#include "base/Threads.h"
#include "component/render/Hatching.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <utility>

namespace {

/// Decoded tiles that are kept from view to view: at least two full screens of 1920×1080 at any zoom.
constexpr std::size_t UsualCacheBytes = std::size_t{128} << 20;

/// Decoded tiles of one block. A view of 3840×2160 fits at any zoom and tile size, so that it is not decoded
/// again with each step of the mouse; larger views are drawn in several blocks.
constexpr std::size_t LargestBlockBytes = std::size_t{256} << 20;

std::size_t PixelsOfTile(const PyramidLayout& layout) {
    return static_cast<std::size_t>(layout.TileWidth()) * static_cast<std::size_t>(layout.TileHeight());
}

std::shared_ptr<std::uint32_t[]> NewTile(const PyramidLayout& layout) {
    return std::make_shared_for_overwrite<std::uint32_t[]>(PixelsOfTile(layout));
}

TilePixels MakeBlankTile(const PyramidLayout& layout) {
    auto tile = NewTile(layout);
    std::fill_n(tile.get(), layout.TileWidth() * layout.TileHeight(), HatchGround);
    return tile;
}

TilePixels MakeHatchedTile(const PyramidLayout& layout) {
    auto tile = NewTile(layout);
    FillHatched({tile.get(), PixelsOfTile(layout)}, layout.TileWidth());
    return tile;
}

} // namespace

/// A tile that is not in the cache.
struct TileLoader::Missing {
    std::size_t place = 0; ///< in the block
    std::int32_t row = 0, column = 0;
};

TileLoader::TileLoader(const PyramidLayout& layout, TileSource& source, ViewMemory& memory, std::uint64_t map)
    : layout_(layout), source_(source), memory_(memory), map_(map),
      tileBytes_(sizeof(std::uint32_t) * static_cast<std::size_t>(layout.TileWidth()) *
                 static_cast<std::size_t>(layout.TileHeight())) {}

std::size_t TileLoader::LargestBlock() const {
    return std::max<std::size_t>(1, LargestBlockBytes / tileBytes_);
}

bool TileLoader::Load(TileBlock& block, std::optional<Time> deadline) {
    block.tileWidth = layout_.TileWidth();
    block.tileHeight = layout_.TileHeight();
    const auto count = static_cast<std::size_t>(block.rows) * static_cast<std::size_t>(block.columns);
    block.tiles.assign(count, nullptr);
    memory_.Tiles().SetCapacity(std::max(UsualCacheBytes, count * tileBytes_));
    std::vector<Missing> missing = FillFromCache(block);
    const bool whole = missing.empty() || LoadMissing(block, missing, deadline);
    for (const Missing& tile : missing)
        if (block.tiles[tile.place])
            memory_.Tiles().Put({map_, layout_.Entry(block.level, tile.row, tile.column)},
                                block.tiles[tile.place], tileBytes_);
    if (!deadline && obstacle_) {
        const TilePixels blank = MakeBlankTile(layout_);
        std::replace(block.tiles.begin(), block.tiles.end(), TilePixels(), blank);
    }
    return whole;
}

bool TileLoader::Keeps(TileBlock block) {
    block.tiles.resize(static_cast<std::size_t>(block.rows) * static_cast<std::size_t>(block.columns));
    return FillFromCache(block).empty();
}

std::vector<TileLoader::Missing> TileLoader::FillFromCache(TileBlock& block) {
    std::vector<Missing> missing;
    std::size_t place = 0;
    for (std::int32_t row = block.firstRow; row < block.firstRow + block.rows; ++row)
        for (std::int32_t column = block.firstColumn; column < block.firstColumn + block.columns; ++column) {
            block.tiles[place] = memory_.Tiles().Find({map_, layout_.Entry(block.level, row, column)});
            if (!block.tiles[place])
                missing.push_back({place, row, column});
            ++place;
        }
    return missing;
}

bool TileLoader::LoadMissing(TileBlock& block, const std::vector<Missing>& missing,
                             std::optional<Time> deadline) {
    std::vector<TileDecoder>& decoders = memory_.Decoders();
    std::atomic<bool> whole{true};
    ForEachOnThreads(missing.size(), static_cast<int>(decoders.size()), [&](int thread, std::size_t item) {
        const bool someAreThere = item >= decoders.size();
        if (deadline && someAreThere && std::chrono::steady_clock::now() >= *deadline)
            whole = false;
        else if (!IsObstructed())
            block.tiles[missing[item].place] =
                LoadTile(decoders[static_cast<std::size_t>(thread)], block.level, missing[item]);
    });
    return whole && !obstacle_;
}

TilePixels TileLoader::LoadTile(TileDecoder& decoder, int level, const Missing& place) {
    try {
        const std::vector<std::uint8_t> encoded = source_.ReadTile(level, place.row, place.column);
        auto tile = NewTile(layout_);
        decoder.DecodeToScreen(encoded, layout_.TileWidth(), layout_.TileHeight(), tile.get(),
                               layout_.TileWidth());
        return tile;
    } catch (const ComponentError& error) {
        if (error.Number() == ErrorNumber::FileDamaged)
            return MakeHatchedTile(layout_); // the rest of the view is still worth seeing
        const std::scoped_lock lock(mutex_);
        obstacle_ = std::current_exception();
        return nullptr;
    }
}

bool TileLoader::IsObstructed() {
    const std::scoped_lock lock(mutex_);
    return obstacle_ != nullptr;
}
