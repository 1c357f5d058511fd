#pragma once

#include "component/PyramidLayout.h"
#include "component/tiles/ColourRows.h"
#include "component/tiles/RowReader.h"

#include <cstddef>
#include <cstdint>

/// What the strips of a pyramid look like: a strip holds the rows of one row of tiles of one level.
class StripPlan {
public:
    /// Throws InvalidArgument when image and layout differ in size, OutOfMemory when the image is so wide
    /// that a few strips of it would fill the memory. Both must outlive the object.
    StripPlan(const ImageInfo& image, const PyramidLayout& layout);

    const ImageInfo& Image() const { return image_; }
    const PyramidLayout& Layout() const { return layout_; }

    PixelFormat Format(int level) const { return level == 0 ? image_.format : overviewFormat_; }
    std::size_t RowBytes(int level) const;
    std::size_t StripBytes(int level) const;
    /// Rows of the strip that holds tile row `row`: the tile's height, fewer for the last.
    std::int32_t StripRows(int level, std::int32_t row) const;

    /// How many strips of level 0 may exist at a time: three keep decoding and encoding from waiting for each
    /// other; huge ones get by with fewer.
    int MostBands() const { return mostBands_; }

private:
    const ImageInfo& image_;
    const PyramidLayout& layout_;
    PixelFormat overviewFormat_;
    int mostBands_ = 3;
};
