#include "component/IconObject.h"

#include "component/PixelImage.h"
#include "component/imaging/RowReader.h"
#include "component/imaging/TileCodec.h"

std::vector<std::uint8_t> IconObject::PngFile() {
    const IconState& icon = Held();
    const BlobRef& picture = icon.record.picture;
    Bytes png;
    if (!icon.container->Get(BlobKind::IconPicture, picture.number, picture.digest, png))
        icon.container->File().Damaged("the picture of icon '" + icon.Name() + "' does not match its digest");
    return png;
}

std::shared_ptr<const AtlavexImage> IconObject::Image() {
    const IconRecord& record = Held().record;
    if (!image_) {
        Bitmap bitmap(record.width, record.height);
        TileDecoder().DecodeToScreen(PngFile(), record.width, record.height, bitmap.pixels.data(),
                                     record.width);
        image_ = std::make_shared<PixelImage>(std::move(bitmap));
    }
    return image_;
}

IconRecord ImportIcon(const std::string& file, const std::string& name, Container& container,
                      NumberSource& numbers) {
    const std::unique_ptr<RowReader> reader = OpenImage(file);
    const ImageInfo& info = reader->Info();
    if (std::int64_t{info.width} * info.height > LargestIconPixels)
        throw ComponentError(ErrorNumber::ImageTooLarge,
                             "The image '" + file + "' is too large for an icon: it has more than " +
                                 std::to_string(LargestIconPixels >> 20) + " megapixels.");
    const std::size_t rowBytes =
        static_cast<std::size_t>(info.width) * static_cast<std::size_t>(BytesPerPixel(info.format));
    Bytes pixels(rowBytes * static_cast<std::size_t>(info.height));
    reader->ReadRows(pixels.data(), static_cast<std::ptrdiff_t>(rowBytes), info.height);
    TileEncoder encoder;
    const auto png = encoder.Encode({pixels.data(), static_cast<std::ptrdiff_t>(rowBytes), info.width,
                                     info.height, info.format, &info.palette});
    IconRecord record;
    record.name = name;
    record.width = info.width;
    record.height = info.height;
    record.picture.number = numbers.Take();
    const ClosedBlob closed = container.Put(BlobKind::IconPicture, record.picture.number, png);
    record.picture.length = static_cast<std::uint32_t>(closed.bytes.size());
    record.picture.digest = closed.digest;
    return record;
}
