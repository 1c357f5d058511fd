#pragma once

#include "component/AtlavexImage.h"
#include "component/Bitmap.h"

#include <memory>
#include <utility>

/// An image whose pixels are at hand: an icon's picture or a rendered view.
class PixelImage final : public AtlavexImage {
public:
    explicit PixelImage(Bitmap bitmap) : PixelImage(std::make_shared<Bitmap>(std::move(bitmap))) {}
    /// Of pixels that others may hold too, and nobody changes meanwhile.
    explicit PixelImage(std::shared_ptr<const Bitmap> bitmap) : bitmap_(std::move(bitmap)) {}

    std::int32_t Width() const override { return bitmap_->width; }
    std::int32_t Height() const override { return bitmap_->height; }
    const Bitmap* Pixels() const override { return bitmap_.get(); }

private:
    std::shared_ptr<const Bitmap> bitmap_;
};
