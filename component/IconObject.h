#pragma once

#include "component/AtlavexIcon.h"
#include "component/MetadataObject.h"

/// An icon of a library.
class IconObject final : public MetadataObject<AtlavexIcon, IconState, ErrorNumber::NoSuchIcon> {
public:
    using MetadataObject::MetadataObject;

    std::shared_ptr<const AtlavexImage> Image() override;
    std::vector<std::uint8_t> PngFile() override;

    std::int32_t OffsetX() const override { return Held().record.offsetX; }
    std::int32_t OffsetY() const override { return Held().record.offsetY; }
    void SetOffsetX(std::int32_t pixels) override { Held().record.offsetX = pixels; }
    void SetOffsetY(std::int32_t pixels) override { Held().record.offsetY = pixels; }

private:
    std::shared_ptr<const AtlavexImage> image_;
};

/// Reads an image file as an icon's picture and stores it. Throws as OpenImage, and ImageTooLarge for more
/// than LargestIconPixels.
IconRecord ImportIcon(const std::string& file, const std::string& name, Container& container,
                      NumberSource& numbers);
