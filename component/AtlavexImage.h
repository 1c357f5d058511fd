#pragma once

#include <cstdint>

struct Bitmap;

/// The image part common to maps and icons: something with a size in pixels that a viewer can show.
class AtlavexImage {
public:
    virtual ~AtlavexImage() = default;

    virtual std::int32_t Width() const = 0;  ///< pixels
    virtual std::int32_t Height() const = 0; ///< pixels

    /// The pixels, where they are at hand (icons and rendered views); nothing for a whole map, which is
    /// looked at through AtlavexMap::RenderView.
    virtual const Bitmap* Pixels() const { return nullptr; }
};
