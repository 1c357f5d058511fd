#include "component/readers/PngReader.h"

#include "component/readers/PngDecoder.h"
#include "component/readers/common/ExifOrientation.h"
#include "component/readers/common/ImageError.h"
#include "component/readers/common/OrientedReader.h"
#include "component/readers/common/SpoolFile.h"
#include "component/tiles/RowReader.h"

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

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

/// Rows of an interlaced PNG from the top. The seven passes are decoded into a temporary file, one after the
/// other; a row is then put together from those passes that have a part in it, each of which is read from its
/// own begin to its end. Memory: two rows.
class PngDeinterlacer : public RowReader {
public:
    PngDeinterlacer(std::unique_ptr<PngDecoder> decoder, const std::filesystem::path& spoolFolder);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;

private:
    static constexpr int Passes = 7;

    void SpoolPasses();
    void AddPass(int pass, std::uint8_t* row);

    std::unique_ptr<PngDecoder> decoder_; ///< empty once the passes are spooled
    SpoolFile spool_;
    std::array<std::int64_t, Passes> next_{}; ///< where each pass's next row lies in the spool
    std::vector<std::uint8_t> part_;          ///< a pass's row; as wide as the image, for the decoder
    std::int32_t row_ = 0;
};

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

/// Rows in the order of the file, for all files that are not interlaced.
class PngReader : public RowReader {
public:
    explicit PngReader(std::unique_ptr<PngDecoder> decoder) : decoder_(std::move(decoder)) {
        info_ = decoder_->Info();
    }

    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override {
        for (std::int32_t done = 0; done < count; ++done, ++row_, rows += stride)
            decoder_->ReadRow(rows, row_);
        if (row_ < info_.height)
            return;
        decoder_->Finish();
        for (std::string& remark : PngRemarks(*decoder_))
            Remark(std::move(remark));
    }

private:
    std::unique_ptr<PngDecoder> decoder_;
    std::int32_t row_ = 0;
};

} // namespace

std::unique_ptr<RowReader> OpenPng(const std::filesystem::path& file,
                                   const std::filesystem::path& spoolFolder) {
    auto decoder = std::make_unique<PngDecoder>(file);
    const Orientation orientation = decoder->StoredOrientation();
    std::unique_ptr<RowReader> reader;
    if (decoder->IsInterlaced())
        reader = std::make_unique<PngDeinterlacer>(std::move(decoder), spoolFolder);
    else
        reader = std::make_unique<PngReader>(std::move(decoder));
    return ApplyOrientation(std::move(reader), orientation, spoolFolder);
}
