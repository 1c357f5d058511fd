#include "component/render/TileCache.h"

#include <utility>

TilePixels TileCache::Find(std::int64_t entry) {
    const auto place = places_.find(entry);
    if (place == places_.end())
        return nullptr;
    kept_.splice(kept_.begin(), kept_, place->second);
    return place->second->pixels;
}

void TileCache::Put(std::int64_t entry, TilePixels pixels) {
    if (const auto place = places_.find(entry); place != places_.end()) {
        place->second->pixels = std::move(pixels);
        return;
    }
    kept_.push_front({entry, std::move(pixels)});
    places_[entry] = kept_.begin();
    Shrink();
}

void TileCache::SetCapacity(std::size_t capacity) {
    capacity_ = capacity;
    Shrink();
}

void TileCache::Shrink() {
    while (places_.size() > capacity_) {
        places_.erase(kept_.back().entry);
        kept_.pop_back();
    }
}
