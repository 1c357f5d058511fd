#include "component/readers/common/JpegCodec.h"

#include "component/readers/common/ImageError.h"

#include <jerror.h>

#include <algorithm>
#include <array>

namespace {

constexpr int ExifMarker = JPEG_APP0 + 1;

/// Common progressive files have some ten scans. A file of a few kilobytes with thousands of scans over a
/// huge picture would keep the program busy for hours.
constexpr int MaxScans = 500;

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

JpegCodec& CodecOf(j_common_ptr codec) {
    return *static_cast<JpegCodec*>(codec->client_data);
}

} // namespace

JpegCoefficients& CoefficientsOf(j_common_ptr codec) {
    return CodecOf(codec).coefficients_;
}

JpegCodec::JpegCodec(ImageFile& file, const std::filesystem::path& spoolFolder)
    : file_(file), coefficients_(exit_, spoolFolder) {
    codec_.err = jpeg_std_error(&errors_);
    errors_.error_exit = OnError;
    errors_.emit_message = OnMessage;
    watch_.progress_monitor = OnProgress;
    codec_.client_data = this;
    const bool read = RunGuarded(exit_, [this] {
        jpeg_create_decompress(&codec_);
        codec_.progress = &watch_;
        coefficients_.Attach(codec_);
        jpeg_stdio_src(&codec_, file_.Stream());
        jpeg_save_markers(&codec_, ExifMarker, 0xFFFF);
        jpeg_read_header(&codec_, TRUE);
    });
    headerIsRead_ = read;
    if (read)
        return;
    jpeg_destroy_decompress(&codec_);
    ThrowReason();
}

JpegCodec::~JpegCodec() {
    jpeg_destroy_decompress(&codec_);
}

void JpegCodec::OnError(j_common_ptr codec) {
    char text[JMSG_LENGTH_MAX];
    codec->err->format_message(codec, text);
    CodecOf(codec).exit_.Leave(text);
}

void JpegCodec::OnMessage(j_common_ptr codec, int level) {
    const int warning = codec->err->msg_code;
    if (level >= 0 || IsHarmless(warning))
        return;
    if (!CodecOf(codec).IsOfMissingEnd(warning))
        OnError(codec);
    CodecOf(codec).endIsMissing_ = true;
}

/// Whether the file has just ended where its pixels may be whole. The library puts in an end mark then; bits
/// that a block lacks are another warning, and scans that are lacking are looked for afterwards. Arithmetic
/// coding leaves out zeros at its end, so that nothing tells there whether the pixels are whole.
bool JpegCodec::IsOfMissingEnd(int warning) const {
    return warning == JWRN_JPEG_EOF && headerIsRead_ && codec_.arith_code == FALSE;
}

/// Whether a component has not come at all, or of a progressive file that breaks off not every bit of each
/// coefficient. A progressive file with an end mark may leave out the last bits.
bool JpegCodec::LacksScans() const {
    for (int component = 0; component < codec_.num_components; ++component) {
        if (codec_.comp_info[component].quant_table == nullptr)
            return true;
        const bool mustBeExact = endIsMissing_ && codec_.progressive_mode != FALSE;
        for (int at = 0; mustBeExact && at < DCTSIZE2; ++at)
            if (codec_.coef_bits[component][at] != 0)
                return true;
    }
    return false;
}

/// Comes after every few rows of every scan.
void JpegCodec::OnProgress(j_common_ptr codec) {
    JpegCodec& self = CodecOf(codec);
    if (self.codec_.input_scan_number > MaxScans)
        self.exit_.Leave("it has too many scans");
    if (self.progress_ != nullptr && self.progress_->IsCancelled())
        self.exit_.Leave("it was cancelled");
}

void JpegCodec::ThrowReason() const {
    coefficients_.ThrowIfFailed();
    if (progress_ != nullptr)
        progress_->ThrowIfCancelled();
    const int code = errors_.msg_code;
    if (code == JERR_OUT_OF_MEMORY)
        ThrowImageError(ErrorNumber::OutOfMemory, file_.Path(), "there is not enough memory to decode it");
    if (MeansOtherKind(code))
        ThrowNotReadable(file_.Path(), exit_.message);
    if (code != JWRN_JPEG_EOF && code != JERR_INPUT_EOF && !endIsMissing_)
        ThrowDamaged(file_.Path(), exit_.message);
    if (started_)
        ThrowEndsBeforeRow(file_.Path(), row_);
    ThrowDamaged(file_.Path(), "the file ends before its pixels");
}

void JpegCodec::ReadRow(std::uint8_t* row) {
    if (!started_)
        Guarded([this] { jpeg_start_decompress(&codec_); });
    if (!started_ && LacksScans())
        ThrowDamaged(file_.Path(), "it lacks a scan of its pixels");
    started_ = true;
    JSAMPROW target = row;
    Guarded([this, &target] { jpeg_read_scanlines(&codec_, &target, 1); });
    ++row_;
}

void JpegCodec::Finish() {
    Guarded([this] { jpeg_finish_decompress(&codec_); });
}
