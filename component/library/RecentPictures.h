#pragma once

#include "component/AtlavexImage.h"

#include <cstddef>
#include <deque>
#include <memory>

/// Holds the pictures that were decoded last, as far as they fit into a bound; the oldest goes first. Whoever
/// else holds a picture keeps it beyond that.
class RecentPictures {
public:
    explicit RecentPictures(std::size_t mostBytes) : mostBytes_(mostBytes) {}

    void Keep(std::shared_ptr<const AtlavexImage> picture);

private:
    std::size_t mostBytes_;
    std::size_t bytes_ = 0;
    std::deque<std::shared_ptr<const AtlavexImage>> pictures_; ///< the oldest first
};
