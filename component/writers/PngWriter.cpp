#include "component/ImageWriter.h"

#include "base/ComponentError.h"
#include "base/LibraryGuard.h"

#include <png.h>

#include <array>
#include <cerrno>
#include <string>
#include <utility>

namespace {

constexpr int CompressionLevel = 1; // the pixels of a scanned map gain little from more

/// What libpng's callbacks know of.
struct PngSink {
    std::FILE* stream = nullptr;
    int systemError = 0;
    LibraryExit exit;
};

void WriteBytes(png_structp png, png_bytep bytes, png_size_t count) {
    auto* sink = static_cast<PngSink*>(png_get_io_ptr(png));
    if (std::fwrite(bytes, 1, count, sink->stream) == count)
        return;
    sink->systemError = errno;
    png_error(png, "write failed");
}

void FlushNothing(png_structp) {}

[[noreturn]] void LeaveLibrary(png_structp png, png_const_charp message) {
    static_cast<PngSink*>(png_get_error_ptr(png))->exit.Leave(message);
}

void IgnoreWarning(png_structp, png_const_charp) {}

/// libpng's two structures, which are freed together; none where memory ran out.
class PngStructures {
public:
    explicit PngStructures(PngSink& sink)
        : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, &sink, LeaveLibrary, IgnoreWarning)),
          info_(png_ == nullptr ? nullptr : png_create_info_struct(png_)) {}
    ~PngStructures() { png_destroy_write_struct(&png_, &info_); }
    PngStructures(const PngStructures&) = delete;
    PngStructures& operator=(const PngStructures&) = delete;

    bool Exist() const { return info_ != nullptr; }
    png_structp Png() const { return png_; }
    png_infop Info() const { return info_; }

private:
    png_structp png_;
    png_infop info_;
};

int ColourType(PixelFormat format) {
    switch (format) {
    case PixelFormat::Grey:
        return PNG_COLOR_TYPE_GRAY;
    case PixelFormat::Palette:
        return PNG_COLOR_TYPE_PALETTE;
    case PixelFormat::Rgb:
        return PNG_COLOR_TYPE_RGB;
    case PixelFormat::Rgba:
        return PNG_COLOR_TYPE_RGB_ALPHA;
    }
    return PNG_COLOR_TYPE_RGB;
}

class PngWriter : public ImageWriter {
public:
    PngWriter(NewFile& file, PictureShape shape)
        : file_(file), shape_(std::move(shape)), sink_{file.Stream(), 0, {}}, structures_(sink_) {
        if (!structures_.Exist())
            throw ComponentError(ErrorNumber::OutOfMemory, "There is not enough memory to write a picture.");
        WriteHeader();
    }

    void WriteRows(std::span<const std::uint8_t> rows, std::int32_t count) override {
        const auto rowBytes =
            static_cast<std::size_t>(shape_.width) * static_cast<std::size_t>(BytesPerPixel(shape_.format));
        Check(RunGuarded(sink_.exit, [this, rows, count, rowBytes] {
            for (std::int32_t row = 0; row < count; ++row)
                png_write_row(structures_.Png(), rows.data() + static_cast<std::size_t>(row) * rowBytes);
        }));
    }

    void Finish() override {
        Check(RunGuarded(sink_.exit, [this] { png_write_end(structures_.Png(), nullptr); }));
    }

private:
    void WriteHeader() {
        FillPalette();
        const bool filtered = shape_.format == PixelFormat::Rgb || shape_.format == PixelFormat::Rgba;
        const int filter = filtered ? PNG_FILTER_SUB : PNG_FILTER_NONE;
        Check(RunGuarded(sink_.exit, [this, filter] {
            auto* const png = structures_.Png();
            auto* const info = structures_.Info();
            png_set_write_fn(png, &sink_, WriteBytes, FlushNothing);
            png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
            png_set_compression_level(png, CompressionLevel);
            png_set_filter(png, PNG_FILTER_TYPE_BASE, filter);
            png_set_IHDR(png, info, static_cast<png_uint_32>(shape_.width),
                         static_cast<png_uint_32>(shape_.height), 8, ColourType(shape_.format),
                         PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
            SetPalette();
            png_write_info(png, info);
        }));
    }

    void FillPalette() {
        for (std::size_t index = 0; index < shape_.palette.size() && index < colours_.size(); ++index) {
            const PaletteEntry& entry = shape_.palette[index];
            colours_[index] = {entry.red, entry.green, entry.blue};
            alphas_[index] = entry.alpha;
            if (entry.alpha != 255)
                alphaCount_ = static_cast<int>(index) + 1;
        }
    }

    void SetPalette() {
        if (shape_.format != PixelFormat::Palette)
            return;
        png_set_PLTE(structures_.Png(), structures_.Info(), colours_.data(),
                     static_cast<int>(shape_.palette.size()));
        if (alphaCount_ > 0)
            png_set_tRNS(structures_.Png(), structures_.Info(), alphas_.data(), alphaCount_, nullptr);
    }

    void Check(bool done) const {
        if (!done)
            Fail();
    }

    [[noreturn]] void Fail() const {
        if (sink_.systemError != 0)
            file_.Fail(sink_.systemError);
        throw ComponentError(ErrorNumber::Failed, "'" + file_.Target().string() +
                                                      "' cannot be written as PNG: " + sink_.exit.message +
                                                      ".");
    }

    NewFile& file_;
    PictureShape shape_;
    PngSink sink_;
    PngStructures structures_;
    std::array<png_color, 256> colours_{};
    std::array<png_byte, 256> alphas_{};
    int alphaCount_ = 0; ///< entries up to the last that is not opaque
};

} // namespace

std::unique_ptr<ImageWriter> MakePngWriter(NewFile& file, const PictureShape& shape) {
    return std::make_unique<PngWriter>(file, shape);
}
