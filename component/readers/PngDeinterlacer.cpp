#include "component/readers/PngDeinterlacer.h"

#include "component/readers/common/ImageError.h"

#include <algorithm>

namespace {

// The library's macros, as functions: how many columns and rows of the image a pass holds.
std::int32_t PassColumns(const ImageInfo& info, int pass) {
    const auto width = static_cast<png_uint_32>(info.width);
    return static_cast<std::int32_t>(PNG_PASS_COLS(width, pass));
}

std::int32_t PassRows(const ImageInfo& info, int pass) {
    const auto height = static_cast<png_uint_32>(info.height);
    return static_cast<std::int32_t>(PNG_PASS_ROWS(height, pass));
}

} // namespace

PngDeinterlacer::PngDeinterlacer(std::unique_ptr<PngDecoder> decoder,
                                 const std::filesystem::path& spoolFolder)
    : decoder_(std::move(decoder)), spool_(spoolFolder) {
    info_ = decoder_->Info();
    part_ = ImageBuffer(decoder_->Path(), std::int64_t{info_.width} * BytesPerPixel(info_.format));
}

void PngDeinterlacer::SpoolPasses() {
    std::int64_t at = 0;
    for (int pass = 0; pass < Passes; ++pass) {
        next_[static_cast<std::size_t>(pass)] = at;
        const std::int32_t columns = PassColumns(info_, pass);
        const std::size_t bytes =
            static_cast<std::size_t>(columns) * static_cast<std::size_t>(BytesPerPixel(info_.format));
        for (std::int32_t row = 0; columns > 0 && row < PassRows(info_, pass); ++row) {
            ThrowIfCancelled();
            decoder_->ReadRow(part_.data(), PNG_ROW_FROM_PASS_ROW(row, pass));
            spool_.Write(at, {part_.data(), bytes});
            at += static_cast<std::int64_t>(bytes);
        }
    }
    decoder_->Finish();
    for (std::string& remark : PngRemarks(*decoder_))
        Remark(std::move(remark));
    decoder_.reset();
}

void PngDeinterlacer::AddPass(int pass, std::uint8_t* row) {
    const std::int32_t columns = PassColumns(info_, pass);
    const auto pixelBytes = static_cast<std::size_t>(BytesPerPixel(info_.format));
    const std::size_t bytes = static_cast<std::size_t>(columns) * pixelBytes;
    std::int64_t& next = next_[static_cast<std::size_t>(pass)];
    spool_.Read(next, {part_.data(), bytes});
    next += static_cast<std::int64_t>(bytes);
    const std::size_t step = pixelBytes << PNG_PASS_COL_SHIFT(pass);
    std::uint8_t* target = row + static_cast<std::size_t>(PNG_PASS_START_COL(pass)) * pixelBytes;
    for (std::size_t at = 0; at < bytes; at += pixelBytes, target += step)
        std::copy_n(part_.data() + at, pixelBytes, target);
}

void PngDeinterlacer::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    if (decoder_)
        SpoolPasses();
    for (std::int32_t done = 0; done < count; ++done, ++row_, rows += stride)
        for (int pass = 0; pass < Passes; ++pass)
            if (PNG_ROW_IN_INTERLACE_PASS(row_, pass) && PassColumns(info_, pass) > 0)
                AddPass(pass, rows);
}
