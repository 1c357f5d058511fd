#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <tuple>

/// Screen pixels of one decoded tile (see Bitmap), shared by the cache and the view being drawn.
using TilePixels = std::shared_ptr<const std::uint32_t[]>;

/// Decoded tiles of several maps, the least recently used out first. The bound is a number of bytes, because
/// the maps' tiles may be of different sizes.
class TileCache {
public:
    struct Key {
        std::uint64_t map = 0;  ///< a number that the maps' renderers agree on
        std::int64_t entry = 0; ///< the tile's number in PyramidLayout's count
        bool operator<(const Key& other) const {
            return std::tie(map, entry) < std::tie(other.map, other.entry);
        }
    };

    explicit TileCache(std::size_t capacity) : capacity_(capacity) {}

    /// The tile, now the most recently used; null when not here.
    TilePixels Find(const Key& key);
    /// Keeps the tile, whose pixels take so many bytes.
    void Put(const Key& key, TilePixels pixels, std::size_t bytes);
    /// Lets go of every tile of the map.
    void Forget(std::uint64_t map);

    /// Changes the bound; what is too much goes at once.
    void SetCapacity(std::size_t bytes);
    std::size_t Bytes() const { return bytes_; }

private:
    struct Kept {
        Key key;
        TilePixels pixels;
        std::size_t bytes = 0;
    };
    using Place = std::list<Kept>::iterator;

    void Drop(Place place);
    void Shrink();

    std::size_t capacity_;
    std::size_t bytes_ = 0;
    std::list<Kept> kept_;        ///< most recently used first
    std::map<Key, Place> places_; ///< in order, so that a map's tiles stand together
};
