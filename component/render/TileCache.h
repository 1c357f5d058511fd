#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <unordered_map>

/// Screen pixels of one decoded tile (see Bitmap), shared by the cache and the view being drawn.
using TilePixels = std::shared_ptr<const std::uint32_t[]>;

/// Decoded tiles, the least recently used out first. All tiles of a map have the same size, so the bound is a
/// number of tiles.
class TileCache {
public:
    explicit TileCache(std::size_t capacity) : capacity_(capacity) {}

    /// The tile of this number in PyramidLayout's count, now the most recently used; null when not here.
    TilePixels Find(std::int64_t entry);
    void Put(std::int64_t entry, TilePixels pixels);

    /// Changes the bound; what is too much goes at once.
    void SetCapacity(std::size_t capacity);
    std::size_t Size() const { return places_.size(); }

private:
    struct Kept {
        std::int64_t entry;
        TilePixels pixels;
    };

    void Shrink();

    std::size_t capacity_;
    std::list<Kept> kept_; ///< most recently used first
    std::unordered_map<std::int64_t, std::list<Kept>::iterator> places_;
};
