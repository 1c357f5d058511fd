#include "component/ImageWriter.h"

#include "base/ComponentError.h"
#include "base/FileDescriptor.h"

#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::int64_t ClassicLimit = std::int64_t{3} << 30; // bytes of pixels; deflate may even add some
constexpr std::int64_t StripBytes = std::int64_t{1} << 18;

/// What libtiff's error callback knows of.
struct TiffFault {
    std::string message;
    int systemError = 0;
};

int KeepError(TIFF*, void* fault, const char*, const char* format, va_list arguments) {
    const int systemError = errno;
    std::array<char, 256> text{};
    const bool told = std::vsnprintf(text.data(), text.size(), format, arguments) > 0;
    auto& kept = *static_cast<TiffFault*>(fault);
    if (kept.message.empty())
        kept = {told ? text.data() : "unknown", systemError};
    return 1; // handled: nothing is printed
}

int IgnoreWarning(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

struct FreeOptions {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

bool HasTransparency(const Palette& palette) {
    return std::any_of(palette.begin(), palette.end(),
                       [](const PaletteEntry& entry) { return entry.alpha != 255; });
}

class TiffWriter : public ImageWriter {
public:
    TiffWriter(NewFile& file, PictureShape shape)
        : file_(file), shape_(std::move(shape)),
          paletteWithAlpha_(shape_.format == PixelFormat::Palette && HasTransparency(shape_.palette)),
          row_(static_cast<std::size_t>(shape_.width) * static_cast<std::size_t>(Samples())) {
        Open();
        WriteTags();
    }

    void WriteRows(std::span<const std::uint8_t> rows, std::int32_t count) override {
        const auto rowBytes =
            static_cast<std::size_t>(shape_.width) * static_cast<std::size_t>(BytesPerPixel(shape_.format));
        for (std::int32_t row = 0; row < count; ++row) {
            // A copy, because the library's predictor works in place.
            FillRow(rows.subspan(static_cast<std::size_t>(row) * rowBytes, rowBytes));
            Check(TIFFWriteScanline(tiff_.get(), row_.data(), nextRow_++) == 1);
        }
    }

    void Finish() override {
        Check(TIFFWriteDirectory(tiff_.get()) == 1);
        tiff_.reset();
        Check(fault_.message.empty());
    }

private:
    int Samples() const { return paletteWithAlpha_ ? 2 : BytesPerPixel(shape_.format); }

    void Open() {
        const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
        if (!options)
            throw ComponentError(ErrorNumber::OutOfMemory, "There is not enough memory to write a picture.");
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), KeepError, &fault_);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), IgnoreWarning, nullptr);
        const std::int64_t bytes = std::int64_t{shape_.width} * Samples() * shape_.height;
        // The library closes what it is given, and the file's owner closes the file: each gets its own.
        FileDescriptor descriptor(dup(fileno(file_.Stream())));
        if (!descriptor.IsOpen())
            file_.Fail(errno);
        tiff_.reset(TIFFFdOpenExt(descriptor.Number(), file_.Target().c_str(),
                                  bytes > ClassicLimit ? "w8" : "w", options.get()));
        Check(tiff_ != nullptr);
        descriptor.Release();
    }

    void WriteTags() {
        const int samples = Samples();
        const std::int64_t rowBytes = std::int64_t{shape_.width} * samples;
        const auto rowsPerStrip = static_cast<std::uint32_t>(
            std::clamp<std::int64_t>(StripBytes / rowBytes, 1, std::int64_t{shape_.height}));
        bool set = Set(TIFFTAG_IMAGEWIDTH, shape_.width) && Set(TIFFTAG_IMAGELENGTH, shape_.height) &&
                   Set(TIFFTAG_BITSPERSAMPLE, 8) && Set(TIFFTAG_SAMPLESPERPIXEL, samples) &&
                   Set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
                   Set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) && Set(TIFFTAG_PHOTOMETRIC, Photometric()) &&
                   Set(TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) &&
                   Set(TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
        if (shape_.format != PixelFormat::Palette)
            set = set && Set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        Check(set && SetAlpha() && SetColours());
    }

    template <class Value>
    bool Set(std::uint32_t tag, Value value) {
        return TIFFSetField(tiff_.get(), tag, value) == 1;
    }

    int Photometric() const {
        if (shape_.format == PixelFormat::Palette)
            return PHOTOMETRIC_PALETTE;
        return shape_.format == PixelFormat::Grey ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
    }

    bool SetAlpha() {
        if (shape_.format != PixelFormat::Rgba && !paletteWithAlpha_)
            return true;
        const std::uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        return TIFFSetField(tiff_.get(), TIFFTAG_EXTRASAMPLES, 1, &kind) == 1;
    }

    bool SetColours() {
        if (shape_.format != PixelFormat::Palette)
            return true;
        constexpr int WordsOfByte = 257; // 255 becomes 65535
        std::array<std::array<std::uint16_t, 256>, 3> colours{};
        for (std::size_t index = 0; index < shape_.palette.size() && index < 256; ++index) {
            const PaletteEntry& entry = shape_.palette[index];
            colours[0][index] = static_cast<std::uint16_t>(entry.red * WordsOfByte);
            colours[1][index] = static_cast<std::uint16_t>(entry.green * WordsOfByte);
            colours[2][index] = static_cast<std::uint16_t>(entry.blue * WordsOfByte);
        }
        return TIFFSetField(tiff_.get(), TIFFTAG_COLORMAP, colours[0].data(), colours[1].data(),
                            colours[2].data()) == 1;
    }

    void FillRow(std::span<const std::uint8_t> source) {
        if (!paletteWithAlpha_) {
            std::copy(source.begin(), source.end(), row_.begin());
            return;
        }
        for (std::size_t x = 0; x < source.size(); ++x) {
            row_[2 * x] = source[x];
            row_[2 * x + 1] = source[x] < shape_.palette.size() ? shape_.palette[source[x]].alpha : 255;
        }
    }

    void Check(bool done) const {
        if (done)
            return;
        if (fault_.systemError != 0)
            file_.Fail(fault_.systemError);
        throw ComponentError(ErrorNumber::Failed, "'" + file_.Target().string() +
                                                      "' cannot be written as TIFF: " + fault_.message + ".");
    }

    NewFile& file_;
    PictureShape shape_;
    bool paletteWithAlpha_;
    std::vector<std::uint8_t> row_;
    std::uint32_t nextRow_ = 0;
    TiffFault fault_; ///< before the handle, which writes to it until it is closed
    std::unique_ptr<TIFF, CloseTiff> tiff_;
};

} // namespace

std::unique_ptr<ImageWriter> MakeTiffWriter(NewFile& file, const PictureShape& shape) {
    return std::make_unique<TiffWriter>(file, shape);
}
