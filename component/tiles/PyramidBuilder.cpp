#include "component/tiles/PyramidBuilder.h"

#include "base/ComponentError.h"
#include "base/Threads.h"
#include "component/tiles/ColourRows.h"
#include "component/tiles/StripAssembler.h"
#include "component/tiles/StripPlan.h"
#include "component/tiles/TileCodec.h"
#include "component/tiles/TileQueue.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <span>
#include <vector>

namespace {

/// Cuts tiles out of strips and encodes them. One object a thread.
class TileCutter {
public:
    /// The plan must outlive the object.
    explicit TileCutter(const StripPlan& plan) : plan_(plan) {}

    /// The tile as PNG, valid until the next call. A tile that reaches beyond the image becomes RGBA of full
    /// size, 0, 0, 0, 0 outside.
    std::span<const std::uint8_t> Encode(const Strip& strip, std::int32_t column);

    /// How many pixels of the tile lie inside the image.
    std::int64_t PixelsInside(const Strip& strip, std::int32_t column) const;

private:
    std::int32_t ColumnsInside(const Strip& strip, std::int32_t column) const;
    PixelView EdgeView(const PixelView& inside);

    const StripPlan& plan_;
    TileEncoder encoder_;
    std::vector<std::uint8_t> edge_;
};

std::int32_t TileCutter::ColumnsInside(const Strip& strip, std::int32_t column) const {
    const PyramidLayout& layout = plan_.Layout();
    const std::int64_t left = std::int64_t{column} * layout.TileWidth();
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(layout.TileWidth(), layout.Level(strip.level).width - left));
}

std::int64_t TileCutter::PixelsInside(const Strip& strip, std::int32_t column) const {
    return std::int64_t{ColumnsInside(strip, column)} * plan_.StripRows(strip.level, strip.row);
}

std::span<const std::uint8_t> TileCutter::Encode(const Strip& strip, std::int32_t column) {
    const PyramidLayout& layout = plan_.Layout();
    PixelView view;
    view.format = plan_.Format(strip.level);
    view.stride = static_cast<std::ptrdiff_t>(plan_.RowBytes(strip.level));
    view.pixels =
        strip.pixels.get() + std::ptrdiff_t{column} * layout.TileWidth() * BytesPerPixel(view.format);
    view.width = ColumnsInside(strip, column);
    view.height = plan_.StripRows(strip.level, strip.row);
    view.palette = &plan_.Image().palette;
    return encoder_.Encode(layout.IsEdgeTile(strip.level, strip.row, column) ? EdgeView(view) : view);
}

PixelView TileCutter::EdgeView(const PixelView& inside) {
    constexpr std::ptrdiff_t PixelBytes = BytesPerPixel(PixelFormat::Rgba);
    const PyramidLayout& layout = plan_.Layout();
    const std::ptrdiff_t stride = layout.TileWidth() * PixelBytes;
    edge_.assign(static_cast<std::size_t>(stride) * static_cast<std::size_t>(layout.TileHeight()), 0);
    for (std::int32_t y = 0; y < inside.height; ++y)
        RowToRgba(inside.pixels + y * inside.stride, inside.format, *inside.palette, inside.width,
                  edge_.data() + y * stride);
    return {edge_.data(), stride, layout.TileWidth(), layout.TileHeight(), PixelFormat::Rgba, nullptr};
}

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
