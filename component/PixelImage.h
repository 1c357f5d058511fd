#pragma once

#include "component/AtlavexImage.h"
#include "component/imaging/Bitmap.h"

#include <utility>

/// An image whose pixels are at hand: an icon's picture or a rendered view.
class PixelImage final : public AtlavexImage {
public:
    explicit PixelImage(Bitmap bitmap) : bitmap_(std::move(bitmap)) {}

    std::int32_t Width() const override { return bitmap_.width; }
    std::int32_t Height() const override { return bitmap_.height; }
    const Bitmap* Pixels() const override { return &bitmap_; }

private:
    Bitmap bitmap_;
};
