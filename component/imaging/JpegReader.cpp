#include "component/imaging/JpegReader.h"

#include "component/imaging/ExifOrientation.h"
#include "component/imaging/ImageError.h"
#include "component/imaging/ImageFile.h"
#include "component/imaging/LibraryGuard.h"
#include "component/imaging/OrientedReader.h"

#include <cstdio>
// The library's header needs the C stream type first.
#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using namespace std::string_view_literals;

constexpr int ExifMarker = JPEG_APP0 + 1;
constexpr std::string_view ExifBegin = "Exif\0\0"sv;

/// Errors that mean a kind of JPEG this program does not read, not a broken one.
bool MeansOtherKind(int error) {
    constexpr std::array OtherKinds{JERR_BAD_PRECISION, JERR_CONVERSION_NOTIMPL, JERR_FRACT_SAMPLE_NOTIMPL,
                                    JERR_SOF_UNSUPPORTED, JERR_NOTIMPL};
    return std::ranges::find(OtherKinds, error) != OtherKinds.end();
}

/// Warnings that leave the pixels whole (junk between markers, an unknown version number). After all others
/// the library would go on with invented pixels.
bool IsHarmless(int warning) {
    constexpr std::array Harmless{JWRN_ADOBE_XFORM, JWRN_BOGUS_ICC,      JWRN_EXTRANEOUS_DATA,
                                  JWRN_JFIF_MAJOR,  JWRN_NOT_SEQUENTIAL, JWRN_TOO_MUCH_DATA};
    return std::ranges::find(Harmless, warning) != Harmless.end();
}

/// The library's error handling, with our way out behind it.
struct ErrorHandling {
    jpeg_error_mgr manager{};
    LibraryExit exit;
};

ErrorHandling& HandlingOf(j_common_ptr codec) {
    return *static_cast<ErrorHandling*>(codec->client_data);
}

void OnError(j_common_ptr codec) {
    char text[JMSG_LENGTH_MAX];
    codec->err->format_message(codec, text);
    HandlingOf(codec).exit.Leave(text);
}

void OnMessage(j_common_ptr codec, int level) {
    if (level < 0 && !IsHarmless(codec->err->msg_code))
        OnError(codec);
}

/// The library's object; a member of its own, so that it is released when the reader's constructor throws.
struct Codec : jpeg_decompress_struct {
    explicit Codec(ErrorHandling& handling) : jpeg_decompress_struct{} {
        err = jpeg_std_error(&handling.manager);
        handling.manager.error_exit = OnError;
        handling.manager.emit_message = OnMessage;
        client_data = &handling;
    }
    ~Codec() { jpeg_destroy_decompress(this); }
    Codec(const Codec&) = delete;
    Codec& operator=(const Codec&) = delete;
};

class JpegReader : public RowReader {
public:
    explicit JpegReader(const std::filesystem::path& path) : file_(path), codec_(handling_) { ReadHeader(); }

    Orientation StoredOrientation() const;
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;

private:
    template <class Call>
    void Guarded(const Call& call) {
        if (!RunGuarded(handling_.exit, call))
            ThrowLibraryError();
    }

    [[noreturn]] void ThrowLibraryError() const;
    void ReadHeader();
    void ChooseFormat();
    void Start();
    void ReadInkRow(std::uint8_t* row);

    ImageFile file_;
    ErrorHandling handling_;
    Codec codec_;
    bool started_ = false;
    std::int32_t row_ = 0;
    std::vector<std::uint8_t> inks_; ///< one row of CMYK, four bytes a pixel
};

void JpegReader::ThrowLibraryError() const {
    const int code = codec_.err->msg_code;
    const bool ends = code == JWRN_JPEG_EOF || code == JERR_INPUT_EOF;
    if (code == JERR_OUT_OF_MEMORY)
        ThrowImageError(ErrorNumber::OutOfMemory, file_.Path(), "there is not enough memory to decode it");
    if (MeansOtherKind(code))
        ThrowNotReadable(file_.Path(), handling_.exit.message);
    if (ends && started_)
        ThrowEndsBeforeRow(file_.Path(), row_);
    ThrowDamaged(file_.Path(), ends ? "the file ends in its header" : handling_.exit.message);
}

void JpegReader::ReadHeader() {
    Guarded([this] {
        jpeg_create_decompress(&codec_);
        jpeg_stdio_src(&codec_, file_.Stream());
        jpeg_save_markers(&codec_, ExifMarker, 0xFFFF);
        jpeg_read_header(&codec_, TRUE);
    });
    CheckImageSize(file_.Path(), codec_.image_width, codec_.image_height);
    info_.width = static_cast<std::int32_t>(codec_.image_width);
    info_.height = static_cast<std::int32_t>(codec_.image_height);
    CheckPixelsPerByte(file_.Path(), std::int64_t{info_.width} * info_.height, file_.Size());
    ChooseFormat();
}

void JpegReader::ChooseFormat() {
    switch (codec_.jpeg_color_space) {
    case JCS_GRAYSCALE:
        codec_.out_color_space = JCS_GRAYSCALE;
        info_.format = PixelFormat::Grey;
        return;
    case JCS_RGB:
    case JCS_YCbCr:
        codec_.out_color_space = JCS_RGB;
        info_.format = PixelFormat::Rgb;
        return;
    case JCS_CMYK:
    case JCS_YCCK:
        codec_.out_color_space = JCS_CMYK;
        info_.format = PixelFormat::Rgb;
        inks_ = ImageBuffer(file_.Path(), std::int64_t{info_.width} * 4);
        return;
    default:
        ThrowNotReadable(file_.Path(),
                         "a JPEG with " + std::to_string(codec_.num_components) + " components is not read");
    }
}

Orientation JpegReader::StoredOrientation() const {
    for (const jpeg_marker_struct* marker = codec_.marker_list; marker != nullptr; marker = marker->next) {
        const std::span<const std::uint8_t> data(marker->data, marker->data_length);
        const auto begins = [&data] {
            return data.size() >= ExifBegin.size() &&
                   std::equal(ExifBegin.begin(), ExifBegin.end(), data.begin());
        };
        if (marker->marker == ExifMarker && begins())
            return ExifOrientation(data.subspan(ExifBegin.size()));
    }
    return Orientation::TopLeft;
}

void JpegReader::Start() {
    Guarded([this] { jpeg_start_decompress(&codec_); });
    started_ = true;
}

void JpegReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    if (!started_)
        Start();
    for (std::int32_t done = 0; done < count; ++done, ++row_, rows += stride) {
        JSAMPROW target = inks_.empty() ? rows : inks_.data();
        Guarded([this, &target] { jpeg_read_scanlines(&codec_, &target, 1); });
        if (!inks_.empty())
            ReadInkRow(rows);
    }
    // Reads on to the end marker, so that a file cut in its last bytes is noticed too.
    if (row_ == info_.height)
        Guarded([this] { jpeg_finish_decompress(&codec_); });
}

void JpegReader::ReadInkRow(std::uint8_t* row) {
    for (std::size_t at = 0; at < inks_.size(); at += 4, row += 3)
        for (std::size_t channel = 0; channel < 3; ++channel)
            row[channel] = static_cast<std::uint8_t>((inks_[at + channel] * inks_[at + 3] + 127) / 255);
}

} // namespace

std::unique_ptr<RowReader> OpenJpeg(const std::filesystem::path& file) {
    auto reader = std::make_unique<JpegReader>(file);
    const Orientation orientation = reader->StoredOrientation();
    return ApplyOrientation(std::move(reader), orientation);
}
