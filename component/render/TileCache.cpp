#include "component/render/TileCache.h"

#include <iterator>
#include <limits>
#include <utility>

TilePixels TileCache::Find(const Key& key) {
    const auto found = places_.find(key);
    if (found == places_.end())
        return nullptr;
    kept_.splice(kept_.begin(), kept_, found->second);
    return found->second->pixels;
}

void TileCache::Put(const Key& key, TilePixels pixels, std::size_t bytes) {
    if (const auto found = places_.find(key); found != places_.end())
        Drop(found->second);
    kept_.push_front({key, std::move(pixels), bytes});
    places_.emplace(key, kept_.begin());
    bytes_ += bytes;
    Shrink();
}

void TileCache::Forget(std::uint64_t map) {
    auto next = places_.lower_bound({map, std::numeric_limits<std::int64_t>::min()});
    while (next != places_.end() && next->first.map == map)
        Drop(std::exchange(next, std::next(next))->second);
}

void TileCache::SetCapacity(std::size_t bytes) {
    capacity_ = bytes;
    Shrink();
}

void TileCache::Drop(Place place) {
    bytes_ -= place->bytes;
    places_.erase(place->key);
    kept_.erase(place);
}

void TileCache::Shrink() {
    while (bytes_ > capacity_)
        Drop(std::prev(kept_.end()));
}
