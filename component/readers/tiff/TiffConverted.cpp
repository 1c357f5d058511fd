#include "component/readers/tiff/TiffConverted.h"

#include "component/readers/common/ImageError.h"
#include "component/readers/tiff/TiffNames.h"

#include <algorithm>
#include <array>

namespace {

/// Pixels that are held at a time, four bytes each, beside the strip as it is stored.
constexpr std::int64_t MostBandPixels = std::int64_t{64} << 20;

} // namespace

void TiffConverted::EndImage::operator()(TIFFRGBAImage* image) const {
    TIFFRGBAImageEnd(image);
    std::default_delete<TIFFRGBAImage>()(image);
}

TiffConverted::TiffConverted(TiffFile& file, const TiffLayout& layout)
    : file_(file), width_(layout.width), height_(layout.height),
      bandRows_(std::min<std::int64_t>(layout.blockHeight, layout.height)) {
    const std::int64_t mostRows = MostBandPixels / std::max<std::int64_t>(layout.blockWidth, width_);
    if (layout.blockHeight > mostRows)
        ThrowImageError(ErrorNumber::ImageTooLarge, file.Path(),
                        "its strips or tiles are larger than the program accepts in their compression (" +
                            TiffCompressionText(COMPRESSION_OJPEG) + ")");
    std::array<char, 1024> reason{};
    auto image = std::make_unique<TIFFRGBAImage>();
    if (TIFFRGBAImageOK(file.Handle(), reason.data()) == 0 ||
        TIFFRGBAImageBegin(image.get(), file.Handle(), 1, reason.data()) == 0)
        ThrowNotReadable(file.Path(), "its " + TiffPixelsText(file) + " are of a kind that is not read");
    image_.reset(image.release());
    // Rows come as they are stored; the orientation is applied later to the whole.
    image_->orientation = ORIENTATION_TOPLEFT;
    image_->req_orientation = ORIENTATION_TOPLEFT;
    band_.resize(static_cast<std::size_t>(width_ * bandRows_));
}

void TiffConverted::Next(std::uint8_t* out, const std::function<void()>& pause) {
    if (row_ % bandRows_ == 0) {
        pause();
        ReadBand();
    }
    const std::uint32_t* pixel = band_.data() + row_ % bandRows_ * width_;
    for (std::int64_t x = 0; x < width_; ++x, ++pixel) {
        *out++ = static_cast<std::uint8_t>(TIFFGetR(*pixel));
        *out++ = static_cast<std::uint8_t>(TIFFGetG(*pixel));
        *out++ = static_cast<std::uint8_t>(TIFFGetB(*pixel));
    }
    ++row_;
}

void TiffConverted::ReadBand() {
    image_->row_offset = static_cast<int>(row_);
    image_->col_offset = 0;
    const auto rows = static_cast<std::uint32_t>(std::min(bandRows_, height_ - row_));
    file_.Check(TIFFRGBAImageGet(image_.get(), band_.data(), static_cast<std::uint32_t>(width_), rows) == 1);
}
