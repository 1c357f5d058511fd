#include "component/readers/JpegReader.h"

#include "component/readers/common/ExifOrientation.h"
#include "component/readers/common/ImageError.h"
#include "component/readers/common/ImageFile.h"
#include "component/readers/common/JpegCodec.h"
#include "component/readers/common/OrientedReader.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_view_literals;

constexpr std::size_t PieceBytes = std::size_t{1} << 16;

constexpr std::string_view ExifBegin = "Exif\0\0"sv;

class JpegReader : public RowReader {
public:
    JpegReader(const std::filesystem::path& path, const std::filesystem::path& spoolFolder);

    /// What the file's Exif data ask for; not applied here.
    Orientation StoredOrientation();
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;
    void WatchForCancel(const Progress& progress) override {
        codec_.PauseWith([&progress] { progress.ThrowIfCancelled(); });
    }

private:
    std::span<const std::uint8_t> NextPiece();
    void ChooseFormat();
    void MixInks(std::uint8_t* row) const;

    ImageFile file_;
    std::vector<std::uint8_t> piece_; ///< of the file
    JpegCodec codec_;
    std::int32_t row_ = 0;
    std::vector<std::uint8_t> inks_; ///< one row of CMYK, four bytes a pixel; empty for other colours
};

JpegReader::JpegReader(const std::filesystem::path& path, const std::filesystem::path& spoolFolder)
    : file_(path), piece_(PieceBytes), codec_({path, [this] { return NextPiece(); }}, spoolFolder) {
    const jpeg_decompress_struct& header = codec_.Header();
    CheckImageSize(path, header.image_width, header.image_height);
    info_.width = static_cast<std::int32_t>(header.image_width);
    info_.height = static_cast<std::int32_t>(header.image_height);
    CheckPixelsPerByte(path, std::int64_t{info_.width} * info_.height, file_.Size());
    ChooseFormat();
}

std::span<const std::uint8_t> JpegReader::NextPiece() {
    return std::span(piece_).first(file_.ReadSome(piece_));
}

void JpegReader::ChooseFormat() {
    jpeg_decompress_struct& header = codec_.Header();
    info_.format = PixelFormat::Rgb;
    switch (header.jpeg_color_space) {
    case JCS_GRAYSCALE:
        header.out_color_space = JCS_GRAYSCALE;
        info_.format = PixelFormat::Grey;
        return;
    case JCS_RGB:
    case JCS_YCbCr:
        header.out_color_space = JCS_RGB;
        return;
    case JCS_CMYK:
    case JCS_YCCK:
        header.out_color_space = JCS_CMYK;
        inks_ = ImageBuffer(file_.Path(), std::int64_t{info_.width} * 4);
        return;
    default:
        ThrowNotReadable(file_.Path(),
                         "a JPEG of " + std::to_string(header.num_components) + " components is not read");
    }
}

Orientation JpegReader::StoredOrientation() {
    for (auto* marker = codec_.Header().marker_list; marker != nullptr; marker = marker->next) {
        const std::span<const std::uint8_t> data(marker->data, marker->data_length);
        if (data.size() >= ExifBegin.size() && std::equal(ExifBegin.begin(), ExifBegin.end(), data.begin()))
            return ExifOrientation(data.subspan(ExifBegin.size()));
    }
    return Orientation::TopLeft;
}

void JpegReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    for (std::int32_t done = 0; done < count; ++done, ++row_, rows += stride) {
        codec_.ReadRow(inks_.empty() ? rows : inks_.data());
        if (!inks_.empty())
            MixInks(rows);
    }
    if (row_ < info_.height)
        return;
    codec_.Finish();
    if (codec_.EndMarkIsMissing())
        Remark("The image '" + file_.Path().string() + "' lacks its end mark; its pixels are whole.");
}

/// The inks are stored inverted, so that 255 is none: what the paper reflects is the product of both.
void JpegReader::MixInks(std::uint8_t* row) const {
    for (std::size_t at = 0; at < inks_.size(); at += 4, row += 3)
        for (std::size_t channel = 0; channel < 3; ++channel)
            row[channel] = static_cast<std::uint8_t>((inks_[at + channel] * inks_[at + 3] + 127) / 255);
}

} // namespace

std::unique_ptr<RowReader> OpenJpeg(const std::filesystem::path& file,
                                    const std::filesystem::path& spoolFolder) {
    auto reader = std::make_unique<JpegReader>(file, spoolFolder);
    const Orientation orientation = reader->StoredOrientation();
    return ApplyOrientation(std::move(reader), orientation, spoolFolder);
}
