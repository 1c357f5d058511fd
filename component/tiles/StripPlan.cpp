#include "component/tiles/StripPlan.h"

#include "base/ComponentError.h"

#include <algorithm>

namespace {

constexpr std::size_t MiB = std::size_t{1} << 20;

// All overviews together weigh at most as much as a band of the format they have, and each may exist twice:
// once being filled, once being encoded. These limits keep a gigapixel below 512 MB in all.
constexpr std::size_t BandForThree = 64 * MiB;
constexpr std::size_t BandForTwo = 108 * MiB;

/// A wider image is refused: 65,536 pixels of RGBA at the tallest tile pass four times over.
constexpr std::size_t MostBandBytes = 1024 * MiB;

} // namespace

StripPlan::StripPlan(const ImageInfo& image, const PyramidLayout& layout)
    : image_(image), layout_(layout), overviewFormat_(OverviewFormat(image.format, image.palette)) {
    if (image.width != layout.Width() || image.height != layout.Height())
        throw ComponentError(ErrorNumber::InvalidArgument, "The image and its tiles differ in size.");
    std::size_t band = StripBytes(0);
    if (layout.Levels() > 1)
        band = std::max(band, 2 * StripBytes(1));
    if (band > MostBandBytes)
        throw ComponentError(ErrorNumber::OutOfMemory,
                             "The image is too wide to be cut into tiles of this height in memory.");
    if (band > BandForTwo)
        mostBands_ = 1;
    else if (band > BandForThree)
        mostBands_ = 2;
}

std::size_t StripPlan::RowBytes(int level) const {
    return static_cast<std::size_t>(layout_.Level(level).width) *
           static_cast<std::size_t>(BytesPerPixel(Format(level)));
}

std::size_t StripPlan::StripBytes(int level) const {
    return RowBytes(level) * static_cast<std::size_t>(StripRows(level, 0));
}

std::int32_t StripPlan::StripRows(int level, std::int32_t row) const {
    const std::int64_t before = std::int64_t{row} * layout_.TileHeight();
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(layout_.TileHeight(), layout_.Level(level).height - before));
}
