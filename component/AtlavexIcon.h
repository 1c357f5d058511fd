#pragma once

#include "component/AtlavexImage.h"
#include "component/Metadata.h"

#include <cstdint>
#include <memory>
#include <vector>

/// One icon of a library.
class AtlavexIcon : public Metadata {
public:
    /// The "name" metadata; when that is empty, the name given when the icon was added.
    virtual std::string Name() const = 0;

    /// The icon's picture; hatched when the stored one does not match its digest, so that a damaged icon can
    /// still be seen, renamed and removed.
    virtual std::shared_ptr<const AtlavexImage> Image() = 0;

    /// The icon's picture as a PNG file. Throws FileDamaged when it does not match its digest.
    virtual std::vector<std::uint8_t> PngFile() = 0;

    /// Displacement of the icon from its position in pixels: positive X moves it right, positive Y down,
    /// 0 centres it.
    virtual std::int32_t OffsetX() const = 0;
    virtual std::int32_t OffsetY() const = 0;
    /// Any 32-bit number.
    virtual void SetOffsetX(std::int32_t pixels) = 0;
    virtual void SetOffsetY(std::int32_t pixels) = 0;
};
