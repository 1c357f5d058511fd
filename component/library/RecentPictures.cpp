#include "component/library/RecentPictures.h"

#include <utility>

namespace {

/// What the smallest picture takes beside its pixels.
constexpr std::size_t Overhead = 256;

std::size_t BytesOf(const AtlavexImage& picture) {
    return Overhead + sizeof(std::uint32_t) * static_cast<std::size_t>(picture.Width()) *
                          static_cast<std::size_t>(picture.Height());
}

} // namespace

void RecentPictures::Keep(std::shared_ptr<const AtlavexImage> picture) {
    bytes_ += BytesOf(*picture);
    pictures_.push_back(std::move(picture));
    while (bytes_ > mostBytes_) {
        bytes_ -= BytesOf(*pictures_.front());
        pictures_.pop_front();
    }
}
