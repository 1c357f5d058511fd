#pragma once

#include "base/Progress.h"
#include "component/AtlavexIcon.h"
#include "component/library/MetadataObject.h"
#include "component/library/PixelImage.h"
#include "component/library/RecentPictures.h"
#include "component/tiles/RowReader.h"

/// An icon of a library.
class IconObject final : public MetadataObject<AtlavexIcon, IconState, ErrorNumber::NoSuchIcon> {
public:
    /// `pictures` is shared by the library's icons.
    IconObject(std::shared_ptr<IconState> state, std::shared_ptr<RecentPictures> pictures)
        : MetadataObject(std::move(state)), pictures_(std::move(pictures)) {}

    std::shared_ptr<const AtlavexImage> Image() override;
    std::vector<std::uint8_t> PngFile() override;

    std::int32_t OffsetX() const override { return Held().record.offsetX; }
    std::int32_t OffsetY() const override { return Held().record.offsetY; }
    void SetOffsetX(std::int32_t pixels) override { Held().record.offsetX = pixels; }
    void SetOffsetY(std::int32_t pixels) override { Held().record.offsetY = pixels; }

private:
    Bitmap DrawPicture();

    std::shared_ptr<RecentPictures> pictures_;
    std::weak_ptr<const AtlavexImage> image_; ///< as long as somebody holds it
};

/// Opens an image file that is to become an icon. Throws as OpenImage, and ImageTooLarge for more than
/// LargestIconPixels.
std::unique_ptr<RowReader> OpenIconImage(const std::string& file, const std::string& spoolFolder);

/// What ImportIcon adds to the progress for such an image.
std::int64_t ImportIconWork(const ImageInfo& info);

/// Reads the image as an icon's picture and stores it. Cancelled takes effect between bands of rows.
IconRecord ImportIcon(RowReader& image, const std::string& name, Container& container, NumberSource& numbers,
                      Progress& progress);
