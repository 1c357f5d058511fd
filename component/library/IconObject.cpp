#include "component/library/IconObject.h"
#include "component/readers/OpenImage.h"

#include "base/StandardErrors.h"
#include "component/render/Hatching.h"
#include "component/tiles/TileCodec.h"

#include <algorithm>

namespace {

/// Rows are read in bands of so many pixels at most, but one row at least: a cancel is seen between them.
constexpr std::int32_t BandPixels = 1 << 18;

std::ptrdiff_t RowBytesOf(const ImageInfo& info) {
    return static_cast<std::ptrdiff_t>(info.width) * BytesPerPixel(info.format);
}

Bytes ReadAllRows(RowReader& image, Progress& progress) {
    const ImageInfo& info = image.Info();
    const std::ptrdiff_t rowBytes = RowBytesOf(info);
    Bytes pixels(static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(info.height));
    const std::int32_t band = std::max(1, BandPixels / info.width);
    for (std::int32_t row = 0; row < info.height; row += band) {
        progress.ThrowIfCancelled();
        const std::int32_t count = std::min(band, info.height - row);
        image.ReadRows(pixels.data() + row * rowBytes, rowBytes, count);
        progress.Add(count * rowBytes);
    }
    return pixels;
}

} // namespace

std::vector<std::uint8_t> IconObject::PngFile() {
    const IconState& icon = Held();
    const BlobRef& picture = icon.record.picture;
    Bytes png;
    if (!icon.container->Get(BlobKind::IconPicture, picture.number, picture.digest, png))
        icon.container->GetDatabase().Damaged("the picture of icon '" + icon.Name() +
                                              "' does not match its digest");
    return png;
}

Bitmap IconObject::DrawPicture() {
    Bitmap bitmap(Held().record.width, Held().record.height);
    try {
        TileDecoder().DecodeToScreen(PngFile(), bitmap.width, bitmap.height, bitmap.pixels.data(),
                                     bitmap.width);
    } catch (const ComponentError& error) {
        if (error.Number() != ErrorNumber::FileDamaged)
            throw;
        FillHatched(bitmap.pixels, bitmap.width); // the icon itself is still there to be worked on
    }
    return bitmap;
}

std::shared_ptr<const AtlavexImage> IconObject::Image() {
    Held();
    if (auto image = image_.lock())
        return image;
    return TellingLackOfMemory([this] {
        std::shared_ptr<const AtlavexImage> image = std::make_shared<PixelImage>(DrawPicture());
        pictures_->Keep(image);
        image_ = image;
        return image;
    });
}

std::unique_ptr<RowReader> OpenIconImage(const std::string& file, const std::string& spoolFolder) {
    std::unique_ptr<RowReader> image = OpenImage(file, spoolFolder);
    const ImageInfo& info = image->Info();
    if (std::int64_t{info.width} * info.height > LargestIconPixels)
        throw ComponentError(ErrorNumber::ImageTooLarge,
                             "The image '" + file + "' is too large for an icon: it has more than " +
                                 std::to_string(LargestIconPixels >> 20) + " megapixels.");
    return image;
}

std::int64_t ImportIconWork(const ImageInfo& info) {
    return 2 * static_cast<std::int64_t>(RowBytesOf(info)) * info.height; // read, then compressed
}

IconRecord ImportIcon(RowReader& image, const std::string& name, Container& container, NumberSource& numbers,
                      Progress& progress) {
    image.WatchForCancel(progress);
    const ImageInfo& info = image.Info();
    const Bytes pixels = ReadAllRows(image, progress);
    const std::vector<std::uint8_t> png = EncodeInSteps(
        {pixels.data(), RowBytesOf(info), info.width, info.height, info.format, &info.palette}, progress);
    progress.ThrowIfCancelled();
    IconRecord record;
    record.name = name;
    record.width = info.width;
    record.height = info.height;
    record.picture.number = numbers.Allocate();
    const ClosedBlob closed = container.Put(BlobKind::IconPicture, record.picture.number, png);
    record.picture.length = static_cast<std::uint32_t>(closed.bytes.size());
    record.picture.digest = closed.digest;
    return record;
}
