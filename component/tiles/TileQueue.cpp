#include "component/tiles/TileQueue.h"

#include <utility>

TileQueue::TileQueue(const StripPlan& plan)
    : plan_(plan), firstWithTiles_(jobs_.end()), free_(static_cast<std::size_t>(plan.Layout().Levels())) {}

TileQueue::Task TileQueue::Next(Tile& tile) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return IsOver() || MayDecode() || tilesWaiting_ > 0; });
    if (IsOver())
        return Task::Nothing;
    if (MayDecode()) {
        decoding_ = true;
        ++bands_;
        return Task::DecodeBand;
    }
    tile = PopTile();
    return Task::EncodeTile;
}

bool TileQueue::MayDecode() const {
    // Two bands' tiles are work enough for all while a third is decoded.
    return !decoding_ && !allDecoded_ && bands_ < plan_.MostBands() &&
           tilesWaiting_ < 2 * std::int64_t{plan_.Layout().Level(0).columns};
}

bool TileQueue::IsOver() const {
    return HasFailed() || (allDecoded_ && !decoding_ && tilesWaiting_ == 0);
}

TileQueue::Tile TileQueue::PopTile() {
    const auto job = firstWithTiles_;
    const Tile tile{&job->strip, job->nextColumn++, job};
    --tilesWaiting_;
    if (job->nextColumn == plan_.Layout().Level(job->strip.level).columns)
        ++firstWithTiles_;
    return tile;
}

Strip TileQueue::NewStrip(int level, std::int32_t row) {
    Strip strip{level, row, nullptr};
    {
        const std::lock_guard lock(mutex_);
        auto& free = free_[static_cast<std::size_t>(level)];
        if (!free.empty()) {
            strip.pixels = std::move(free.back());
            free.pop_back();
        }
    }
    if (!strip.pixels)
        strip.pixels = std::make_unique_for_overwrite<std::uint8_t[]>(plan_.StripBytes(level));
    return strip;
}

void TileQueue::Add(Strip strip) {
    const std::int32_t columns = plan_.Layout().Level(strip.level).columns;
    {
        const std::lock_guard lock(mutex_);
        const auto job = jobs_.insert(jobs_.end(), Job{std::move(strip), 0, columns});
        if (firstWithTiles_ == jobs_.end())
            firstWithTiles_ = job;
        tilesWaiting_ += columns;
    }
    changed_.notify_all();
}

void TileQueue::BandDone(bool wasLast) {
    {
        const std::lock_guard lock(mutex_);
        decoding_ = false;
        allDecoded_ = wasLast;
    }
    changed_.notify_all();
}

void TileQueue::TileDone(const Tile& tile) {
    const std::lock_guard lock(mutex_);
    if (--tile.job->unfinished != 0)
        return;
    Strip& strip = tile.job->strip;
    free_[static_cast<std::size_t>(strip.level)].push_back(std::move(strip.pixels));
    if (strip.level == 0)
        --bands_;
    jobs_.erase(tile.job);
    changed_.notify_all();
}

void TileQueue::Fail(std::exception_ptr error) noexcept {
    {
        const std::lock_guard lock(mutex_);
        if (!error_)
            error_ = std::move(error);
        failed_.store(true, std::memory_order_relaxed);
    }
    changed_.notify_all();
}

void TileQueue::RethrowFailure() {
    if (error_)
        std::rethrow_exception(error_);
}
