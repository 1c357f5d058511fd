#include "component/render/TileLoader.h"

#include "base/ComponentError.h"
#include "component/render/ShortThreads.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace {

/// Decoded tiles that are kept from view to view: at least two full screens of 1920×1080 at any zoom.
constexpr std::size_t UsualCacheBytes = std::size_t{128} << 20;

/// Decoded tiles of one block. A view of 3840×2160 fits at any zoom and tile size, so that it is not decoded
/// again with each step of the mouse; larger views are drawn in several blocks.
constexpr std::size_t LargestBlockBytes = std::size_t{256} << 20;

/// Encoded tiles that may wait for a decoder, for each thread.
constexpr std::size_t WaitingTiles = 8;

constexpr std::uint32_t HatchGround = 0xFFE4E4E4;
constexpr std::uint32_t HatchLine = 0xFFB04040;
constexpr std::int32_t HatchPeriod = 16;
constexpr std::int32_t HatchWidth = 3;

std::shared_ptr<std::uint32_t[]> NewTile(const PyramidLayout& layout) {
    const auto count =
        static_cast<std::size_t>(layout.TileWidth()) * static_cast<std::size_t>(layout.TileHeight());
    return std::make_shared_for_overwrite<std::uint32_t[]>(count);
}

TilePixels MakeHatchedTile(const PyramidLayout& layout) {
    auto tile = NewTile(layout);
    for (std::int32_t y = 0, i = 0; y < layout.TileHeight(); ++y)
        for (std::int32_t x = 0; x < layout.TileWidth(); ++x, ++i)
            tile[i] = (x + y) % HatchPeriod < HatchWidth ? HatchLine : HatchGround;
    return tile;
}

} // namespace

/// A tile that is not in the cache.
struct TileLoader::Missing {
    std::size_t place = 0; ///< in the block
    std::int32_t row = 0, column = 0;
};

/// Encoded tiles on their way to the decoders.
class TileLoader::Work {
public:
    struct Job {
        std::size_t place = 0;
        std::vector<std::uint8_t> encoded;
    };

    explicit Work(std::size_t bound) : bound_(bound) {}

    /// False when so many wait that the caller should rather decode one itself.
    bool Push(Job& job) {
        const std::lock_guard lock(mutex_);
        if (jobs_.size() >= bound_)
            return false;
        jobs_.push_back(std::move(job));
        arrived_.notify_one();
        return true;
    }

    void Finish() {
        const std::lock_guard lock(mutex_);
        finished_ = true;
        arrived_.notify_all();
    }

    /// The next job; nothing when there will be no more.
    std::optional<Job> Pop() {
        std::unique_lock lock(mutex_);
        arrived_.wait(lock, [this] { return finished_ || !jobs_.empty(); });
        if (jobs_.empty())
            return std::nullopt;
        Job job = std::move(jobs_.front());
        jobs_.pop_front();
        return job;
    }

private:
    std::size_t bound_;
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<Job> jobs_;
    bool finished_ = false;
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
    std::vector<Missing> missing = TakeFromCache(block);
    const bool whole = missing.empty() || LoadMissing(block, missing, deadline);
    for (const Missing& tile : missing)
        if (block.tiles[tile.place])
            memory_.Tiles().Put({map_, layout_.Entry(block.level, tile.row, tile.column)},
                                block.tiles[tile.place], tileBytes_);
    return whole;
}

bool TileLoader::Keeps(TileBlock block) {
    block.tiles.resize(static_cast<std::size_t>(block.rows) * static_cast<std::size_t>(block.columns));
    return TakeFromCache(block).empty();
}

std::vector<TileLoader::Missing> TileLoader::TakeFromCache(TileBlock& block) {
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
    const std::size_t threads = std::min(decoders.size(), missing.size());
    Work work(WaitingTiles * threads);
    const auto decodeRest = [&](std::size_t thread) {
        while (auto job = work.Pop())
            block.tiles[job->place] = Decode(decoders[thread], job->encoded);
    };
    bool whole = true;
    const auto readAll = [&] {
        for (const Missing& tile : missing) {
            const bool some = &tile - missing.data() >= static_cast<std::ptrdiff_t>(threads);
            if (deadline && some && std::chrono::steady_clock::now() >= *deadline) {
                whole = false;
                return;
            }
            Work::Job job{tile.place, {}};
            try {
                job.encoded = source_.ReadTile(block.level, tile.row, tile.column);
            } catch (const ComponentError&) {
                block.tiles[tile.place] =
                    MakeHatchedTile(layout_); // the rest of the view is still worth seeing
                continue;
            }
            if (!work.Push(job))
                block.tiles[tile.place] = Decode(decoders[0], job.encoded);
        }
    };
    RunOnThreads(static_cast<int>(threads), [&](int thread) {
        if (thread == 0) {
            // Whatever ends the reading, the helpers must not wait for more.
            struct AtEnd {
                Work& work;
                ~AtEnd() { work.Finish(); }
            } const atEnd{work};
            readAll();
        }
        decodeRest(static_cast<std::size_t>(thread));
    });
    return whole;
}

TilePixels TileLoader::Decode(TileDecoder& decoder, const std::vector<std::uint8_t>& encoded) const {
    auto tile = NewTile(layout_);
    try {
        decoder.DecodeToScreen(encoded, layout_.TileWidth(), layout_.TileHeight(), tile.get(),
                               layout_.TileWidth());
    } catch (const ComponentError&) {
        return MakeHatchedTile(layout_);
    }
    return tile;
}
