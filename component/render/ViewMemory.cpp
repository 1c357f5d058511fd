#include "component/render/ViewMemory.h"

#include "base/Threads.h"

ViewMemory::ViewMemory(int threads, std::chrono::milliseconds patience, bool tiesUp)
    : threads_(static_cast<std::size_t>(ThreadCount(threads))), patience_(patience), tiesUp_(tiesUp) {}

std::vector<TileDecoder>& ViewMemory::Decoders() {
    if (decoders_.empty())
        decoders_.resize(threads_);
    return decoders_;
}

const ViewMemory::Picture* ViewMemory::LastOf(std::uint64_t map) const {
    const Picture& last = pictures_[last_];
    return last.map == map ? &last : nullptr;
}

ViewMemory::Picture& ViewMemory::Next() {
    Picture& next = pictures_[1 - last_];
    next.map = 0;
    if (!next.bitmap || next.bitmap.use_count() > 1)
        next.bitmap = std::make_shared<Bitmap>();
    return next;
}

void ViewMemory::KeepNext() {
    last_ = 1 - last_;
}
