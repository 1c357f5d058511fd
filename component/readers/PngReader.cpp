#include "component/readers/PngReader.h"

#include "component/readers/PngDecoder.h"
#include "component/readers/PngDeinterlacer.h"
#include "component/readers/common/ExifOrientation.h"
#include "component/readers/common/ImageError.h"
#include "component/readers/common/OrientedReader.h"

#include <vector>

namespace {

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
