#include "cli/ImageWriter.h"

#include "base/ComponentError.h"

#include <png.h>

#include <array>
#include <cerrno>
#include <csetjmp>
#include <string>

namespace {

constexpr int CompressionLevel = 1; // the pixels of a scanned map gain little from more

/// What libpng's callbacks know of.
struct PngSink {
    std::FILE* stream = nullptr;
    int systemError = 0;
    std::string message;
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
    static_cast<PngSink*>(png_get_error_ptr(png))->message = message;
    png_longjmp(png, 1);
}

void IgnoreWarning(png_structp, png_const_charp) {}

/// Runs calls of libpng; false when it gave up. The body must own nothing: a jump out of it runs no
/// destructor.
template <class Body>
bool InLibrary(png_structp png, const Body& body) {
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    body();
    return true;
}

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
    PngWriter(NewFile& file, const PictureShape& shape) : file_(file), shape_(shape) {
        sink_.stream = file.Stream();
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &sink_, LeaveLibrary, IgnoreWarning);
        info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_write_struct(&png_, nullptr);
            throw ComponentError(ErrorNumber::OutOfMemory, "There is not enough memory to write a picture.");
        }
        WriteHeader();
    }
    ~PngWriter() override { png_destroy_write_struct(&png_, &info_); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    void WriteRows(std::span<const std::uint8_t> rows, std::int32_t count) override {
        const auto rowBytes =
            static_cast<std::size_t>(shape_.width) * static_cast<std::size_t>(BytesPerPixel(shape_.format));
        Check(InLibrary(png_, [this, rows, count, rowBytes] {
            for (std::int32_t row = 0; row < count; ++row)
                png_write_row(png_, rows.data() + static_cast<std::size_t>(row) * rowBytes);
        }));
    }

    void Finish() override {
        Check(InLibrary(png_, [this] { png_write_end(png_, nullptr); }));
    }

private:
    void WriteHeader() {
        FillPalette();
        const bool filtered = shape_.format == PixelFormat::Rgb || shape_.format == PixelFormat::Rgba;
        const int filter = filtered ? PNG_FILTER_SUB : PNG_FILTER_NONE;
        const bool written = InLibrary(png_, [this, filter] {
            png_set_write_fn(png_, &sink_, WriteBytes, FlushNothing);
            png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
            png_set_compression_level(png_, CompressionLevel);
            png_set_filter(png_, PNG_FILTER_TYPE_BASE, filter);
            png_set_IHDR(png_, info_, static_cast<png_uint_32>(shape_.width),
                         static_cast<png_uint_32>(shape_.height), 8, ColourType(shape_.format),
                         PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
            SetPalette();
            png_write_info(png_, info_);
        });
        if (!written) {
            const std::string reason = sink_.message;
            png_destroy_write_struct(&png_, &info_); // the destructor of a half-made object does not run
            Fail(reason);
        }
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
        png_set_PLTE(png_, info_, colours_.data(), static_cast<int>(shape_.palette.size()));
        if (alphaCount_ > 0)
            png_set_tRNS(png_, info_, alphas_.data(), alphaCount_, nullptr);
    }

    void Check(bool done) const {
        if (!done)
            Fail(sink_.message);
    }

    [[noreturn]] void Fail(const std::string& reason) const {
        if (sink_.systemError != 0)
            file_.Fail(sink_.systemError);
        throw ComponentError(ErrorNumber::Failed,
                             "'" + file_.Target().string() + "' cannot be written as PNG: " + reason + ".");
    }

    NewFile& file_;
    PictureShape shape_;
    PngSink sink_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::array<png_color, 256> colours_{};
    std::array<png_byte, 256> alphas_{};
    int alphaCount_ = 0; ///< entries up to the last that is not opaque
};

} // namespace

std::unique_ptr<ImageWriter> MakePngWriter(NewFile& file, const PictureShape& shape) {
    return std::make_unique<PngWriter>(file, shape);
}
