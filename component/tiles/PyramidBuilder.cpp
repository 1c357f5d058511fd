#include "component/tiles/PyramidBuilder.h"

#include "base/ComponentError.h"
#include "base/Threads.h"
#include "component/tiles/StripAssembler.h"
#include "component/tiles/TileCutter.h"
#include "component/tiles/TileQueue.h"

#include <algorithm>
#include <new>

namespace {

/// Decoded at a time: little enough to be halved while it is in the cache and for a cancel to act at once.
constexpr std::size_t BytesAtATime = std::size_t{512} * 1024;

constexpr int MostThreads = 64;

/// One import: what all workers share.
class Build {
public:
    Build(RowReader& reader, const PyramidLayout& layout, TileSink& sink, Progress& progress)
        : reader_(reader), sink_(sink), progress_(progress), plan_(reader.Info(), layout), queue_(plan_),
          assembler_(plan_, queue_) {
        reader.WatchForCancel(progress);
    }

    /// Works with the calling thread and `threads` − 1 others until all is done.
    void Run(int threads);

private:
    void Work() noexcept;
    void DoTasks();
    void DecodeBand();
    void DecodeRows(std::int32_t count);
    void EncodeTile(TileCutter& cutter, const TileQueue::Tile& tile);

    RowReader& reader_;
    TileSink& sink_;
    Progress& progress_;
    StripPlan plan_;
    TileQueue queue_;
    StripAssembler assembler_; ///< touched by the decoding worker only
};

void Build::Run(int threads) {
    RunOnThreads(threads, [this](int) { Work(); });
    queue_.RethrowFailure();
}

void Build::Work() noexcept {
    try {
        DoTasks();
    } catch (...) {
        queue_.Fail(std::current_exception()); // rethrown by Run
    }
}

void Build::DoTasks() {
    TileCutter cutter(plan_);
    TileQueue::Tile tile;
    for (;;) {
        const TileQueue::Task task = queue_.Next(tile);
        if (task == TileQueue::Task::Nothing)
            return;
        progress_.ThrowIfCancelled();
        if (task == TileQueue::Task::DecodeBand)
            DecodeBand();
        else
            EncodeTile(cutter, tile);
    }
}

void Build::DecodeBand() {
    const auto rowsAtATime =
        static_cast<std::int32_t>(std::clamp<std::size_t>(BytesAtATime / plan_.RowBytes(0), 1, MaxTileSide));
    for (std::int32_t left = assembler_.RowsLeftInStrip(); left > 0 && !queue_.HasFailed();) {
        const std::int32_t count = std::min(left, rowsAtATime);
        progress_.ThrowIfCancelled();
        DecodeRows(count);
        left -= count;
    }
    queue_.BandDone(assembler_.RowsLeft() == 0);
}

void Build::DecodeRows(std::int32_t count) {
    reader_.ReadRows(assembler_.NextRow(), static_cast<std::ptrdiff_t>(plan_.RowBytes(0)), count);
    assembler_.RowsFilled(count);
}

void Build::EncodeTile(TileCutter& cutter, const TileQueue::Tile& tile) {
    const Strip& strip = *tile.strip;
    sink_.Put(strip.level, strip.row, tile.column, cutter.Encode(strip, tile.column));
    const std::int64_t finished = strip.level == 0 ? cutter.PixelsInside(strip, tile.column) : 0;
    queue_.TileDone(tile);
    progress_.Add(finished);
}

} // namespace

void BuildPyramid(RowReader& reader, const PyramidLayout& layout, TileSink& sink, Progress& progress,
                  int threads) {
    try {
        Build(reader, layout, sink, progress).Run(std::min(ThreadCount(threads), MostThreads));
    } catch (const std::bad_alloc&) {
        throw ComponentError(ErrorNumber::OutOfMemory,
                             "There is not enough memory to cut the image into tiles.");
    }
}
