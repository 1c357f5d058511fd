#pragma once

#include "component/tiles/StripPlan.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

/// The rows of one row of tiles, `StripPlan::RowBytes` apart. Its memory comes from and returns to the queue.
struct Strip {
    int level = 0;
    std::int32_t row = 0;
    std::unique_ptr<std::uint8_t[]> pixels;
};

/// The work of several workers without fixed roles on one pyramid. A worker asks for its next task and is
/// told to decode the next band, when few tiles wait and nobody decodes, or to encode a tile. Strips are
/// recycled, and no more bands of level 0 exist at a time than the plan allows.
class TileQueue {
    struct Job {
        Strip strip;
        std::int32_t nextColumn = 0;
        std::int32_t unfinished = 0;
    };

public:
    enum class Task { DecodeBand, EncodeTile, Nothing };

    /// A tile that a worker has taken.
    struct Tile {
        const Strip* strip = nullptr;
        std::int32_t column = 0;
        std::list<Job>::iterator job;
    };

    explicit TileQueue(const StripPlan& plan);

    /// Waits for work; Nothing when all is done or a worker has failed. Fills `tile` for EncodeTile.
    Task Next(Tile& tile);

    /// The decoding worker's: memory for a strip, a filled strip, and the end of its band.
    Strip NewStrip(int level, std::int32_t row);
    void Add(Strip strip);
    void BandDone(bool wasLast);

    void TileDone(const Tile& tile);

    /// Ends the work of all; the first error is kept.
    void Fail(std::exception_ptr error) noexcept;
    bool HasFailed() const noexcept { return failed_.load(std::memory_order_relaxed); }
    /// After the work: throws what a worker threw.
    void RethrowFailure();

private:
    bool MayDecode() const;
    bool IsOver() const;
    Tile PopTile();

    const StripPlan& plan_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::list<Job> jobs_;                     ///< strips with tiles that are not finished, oldest first
    std::list<Job>::iterator firstWithTiles_; ///< the first of them with tiles that nobody has taken
    std::int64_t tilesWaiting_ = 0;
    int bands_ = 0; ///< strips of level 0 that exist
    bool decoding_ = false;
    bool allDecoded_ = false;
    std::vector<std::vector<std::unique_ptr<std::uint8_t[]>>> free_; ///< by level
    std::atomic<bool> failed_{false};
    std::exception_ptr error_;
};
