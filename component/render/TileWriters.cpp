#include "component/render/TileWriters.h"

#include "base/Threads.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

namespace {

/// Bytes that may wait for each thread.
constexpr std::size_t WaitingBytes = std::size_t{4} << 20;

/// The tiles of the folders that one thread writes into.
class TileLine {
public:
    /// False, and the tile still the caller's, when enough wait.
    bool Push(TileFile& tile) {
        const std::lock_guard lock(mutex_);
        if (bytes_ >= WaitingBytes)
            return false;
        bytes_ += tile.bytes.size();
        tiles_.push_back(std::move(tile));
        changed_.notify_one();
        return true;
    }

    /// The next tile, if there is one now.
    std::optional<TileFile> TryPop() {
        const std::lock_guard lock(mutex_);
        return PopLocked();
    }

    /// The next tile; nothing once there will be no more.
    std::optional<TileFile> Pop() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return finished_ || !tiles_.empty(); });
        return PopLocked();
    }

    void Finish() {
        const std::lock_guard lock(mutex_);
        finished_ = true;
        changed_.notify_all();
    }

private:
    std::optional<TileFile> PopLocked() {
        if (tiles_.empty())
            return std::nullopt;
        TileFile tile = std::move(tiles_.front());
        tiles_.pop_front();
        bytes_ -= tile.bytes.size();
        return tile;
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<TileFile> tiles_;
    std::size_t bytes_ = 0;
    bool finished_ = false;
};

class TileWriters {
public:
    TileWriters(const ExportFolder& folder, Progress& progress, int threads)
        : folder_(folder), progress_(progress), lines_(static_cast<std::size_t>(threads)) {}

    /// Hands the tile to its folder's thread; while that has enough to do, writes something here.
    void Put(TileFile tile) {
        TileLine& line = lines_[static_cast<std::size_t>(tile.column) % lines_.size()];
        while (!line.Push(tile)) {
            std::optional<TileFile> waiting = lines_.front().TryPop();
            if (!waiting)
                waiting = line.TryPop();
            if (waiting)
                Write(*waiting);
        }
        Check();
    }

    /// Writes what waits for this thread, till the end.
    void WriteLine(std::size_t thread) {
        while (auto tile = lines_[thread].Pop())
            Write(*tile);
    }

    /// What is left when all have been read, whoever it was meant for.
    void WriteRest() {
        for (TileLine& line : lines_)
            while (auto tile = line.TryPop())
                Write(*tile);
    }

    void Finish() {
        for (TileLine& line : lines_)
            line.Finish();
    }

    /// The first fault ends all threads, each with this fault.
    void Stop(std::exception_ptr fault) {
        const std::lock_guard lock(mutex_);
        if (!fault_)
            fault_ = std::move(fault);
        stopped_ = true;
    }

private:
    void Check() {
        progress_.ThrowIfCancelled();
        if (!stopped_)
            return;
        const std::lock_guard lock(mutex_);
        std::rethrow_exception(fault_);
    }

    void Write(const TileFile& tile) {
        Check();
        folder_.Write(tile.name, tile.bytes);
        progress_.Add(1);
    }

    const ExportFolder& folder_;
    Progress& progress_;
    std::vector<TileLine> lines_;
    std::atomic<bool> stopped_{false};
    std::mutex mutex_;
    std::exception_ptr fault_;
};

/// What the thread of this number does; number 0 reads.
void DoPart(TileWriters& writers, int thread,
            const std::function<void(const std::function<void(TileFile)>& put)>& read) {
    if (thread != 0) {
        writers.WriteLine(static_cast<std::size_t>(thread));
        return;
    }
    read([&](TileFile tile) { writers.Put(std::move(tile)); });
    writers.WriteRest();
    writers.Finish();
}

} // namespace

void WriteTiles(const ExportFolder& folder, Progress& progress, int threads,
                const std::function<void(const std::function<void(TileFile)>& put)>& read) {
    TileWriters writers(folder, progress, threads);
    RunOnThreads(threads, [&](int thread) {
        try {
            DoPart(writers, thread, read);
        } catch (...) { // thrown on; but first the others must not wait for more
            writers.Stop(std::current_exception());
            writers.Finish();
            throw;
        }
    });
}
