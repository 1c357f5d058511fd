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

JpegCodec::JpegCodec(JpegSource source, const std::filesystem::path& spoolFolder,
                     std::span<const std::uint8_t> tables)
    : source_(std::move(source)), coefficients_(exit_, spoolFolder) {
    Prepare();
    headerIsRead_ = RunGuarded(exit_, [this, tables] { ReadHeader(tables); });
    if (headerIsRead_)
        return;
    jpeg_destroy_decompress(&codec_);
    ThrowReason();
}

void JpegCodec::Prepare() {
    codec_.err = jpeg_std_error(&errors_);
    errors_.error_exit = OnError;
    errors_.emit_message = OnMessage;
    watch_.progress_monitor = OnProgress;
    codec_.client_data = this;
    bytes_.init_source = [](j_decompress_ptr) {};
    bytes_.fill_input_buffer = OnEmpty;
    bytes_.skip_input_data = OnSkip;
    bytes_.resync_to_restart = jpeg_resync_to_restart;
    bytes_.term_source = [](j_decompress_ptr) {};
}

void JpegCodec::ReadHeader(std::span<const std::uint8_t> tables) {
    jpeg_create_decompress(&codec_);
    codec_.progress = &watch_;
    codec_.src = &bytes_;
    coefficients_.Attach(codec_);
    jpeg_save_markers(&codec_, ExifMarker, 0xFFFF);
    if (!tables.empty()) {
        bytes_.next_input_byte = tables.data();
        bytes_.bytes_in_buffer = tables.size();
        jpeg_read_header(&codec_, FALSE);
        bytes_.bytes_in_buffer = 0;
    }
    jpeg_read_header(&codec_, TRUE);
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

template <class Call>
bool JpegCodec::Kept(const Call& call) {
    try {
        call();
        return true;
    } catch (...) {
        failure_ = std::current_exception();
        return false;
    }
}

/// Comes after every few rows of every scan.
void JpegCodec::OnProgress(j_common_ptr codec) {
    JpegCodec& self = CodecOf(codec);
    if (self.codec_.input_scan_number > MaxScans)
        self.exit_.Leave("it has too many scans");
    if (self.pause_ && !self.Kept(self.pause_))
        self.exit_.Leave("it was stopped");
}

std::span<const std::uint8_t> JpegCodec::NextBytes() {
    std::span<const std::uint8_t> bytes;
    if (!Kept([this, &bytes] { bytes = source_.next(); }))
        exit_.Leave("its bytes could not be read");
    return bytes;
}

/// At the end an end mark is put in, after a warning.
boolean JpegCodec::OnEmpty(j_decompress_ptr codec) {
    static constexpr std::array<JOCTET, 2> EndMark{0xFF, JPEG_EOI};
    std::span<const std::uint8_t> bytes = CodecOf(reinterpret_cast<j_common_ptr>(codec)).NextBytes();
    if (bytes.empty()) {
        codec->err->msg_code = JWRN_JPEG_EOF;
        codec->err->emit_message(reinterpret_cast<j_common_ptr>(codec), -1);
        bytes = EndMark;
    }
    codec->src->next_input_byte = bytes.data();
    codec->src->bytes_in_buffer = bytes.size();
    return TRUE;
}

void JpegCodec::OnSkip(j_decompress_ptr codec, long bytes) {
    auto left = static_cast<std::size_t>(std::max(bytes, 0L));
    while (left > codec->src->bytes_in_buffer) {
        left -= codec->src->bytes_in_buffer;
        OnEmpty(codec);
    }
    codec->src->next_input_byte += left;
    codec->src->bytes_in_buffer -= left;
}

void JpegCodec::ThrowReason() const {
    coefficients_.ThrowIfFailed();
    if (failure_)
        std::rethrow_exception(failure_);
    const int code = errors_.msg_code;
    if (code == JERR_OUT_OF_MEMORY)
        ThrowImageError(ErrorNumber::OutOfMemory, source_.path, "there is not enough memory to decode it");
    if (MeansOtherKind(code))
        ThrowNotReadable(source_.path, exit_.message);
    if (code != JWRN_JPEG_EOF && code != JERR_INPUT_EOF && !endIsMissing_)
        ThrowDamaged(source_.path, exit_.message);
    if (started_)
        ThrowEndsBeforeRow(source_.path, row_);
    ThrowDamaged(source_.path, "the file ends before its pixels");
}

void JpegCodec::ReadRow(std::uint8_t* row) {
    if (!started_)
        Guarded([this] { jpeg_start_decompress(&codec_); });
    if (!started_ && LacksScans())
        ThrowDamaged(source_.path, "it lacks a scan of its pixels");
    started_ = true;
    JSAMPROW target = row;
    Guarded([this, &target] { jpeg_read_scanlines(&codec_, &target, 1); });
    ++row_;
}

void JpegCodec::Finish() {
    Guarded([this] { jpeg_finish_decompress(&codec_); });
}
