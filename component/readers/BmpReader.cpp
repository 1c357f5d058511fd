#include "component/readers/BmpReader.h"

#include "component/readers/BmpHeader.h"
#include "component/readers/BmpPixels.h"
#include "component/readers/BmpRunReader.h"
#include "component/readers/common/ImageError.h"
#include "component/readers/common/ImageFile.h"

#include <algorithm>

namespace {

/// How many bytes of stored rows are read at once, unless a single row is longer.
constexpr std::int64_t BandBytes = std::int64_t{1} << 20;

/// Rows that are not run-length coded. Of a file stored upwards the rows are fetched from its end.
class BmpReader : public RowReader {
public:
    BmpReader(ImageFile file, const BmpHeader& header);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;

private:
    void ReadBand(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count);

    ImageFile file_;
    BmpHeader header_;
    BmpPixels pixels_;
    std::int32_t bandRows_;
    std::vector<std::uint8_t> band_;
    std::int32_t row_ = 0;
};

BmpReader::BmpReader(ImageFile file, const BmpHeader& header)
    : file_(std::move(file)), header_(header), pixels_(header) {
    // Padding behind the last stored row is left out by some writers.
    const std::int64_t needed = header.StoredRowBytes() * (header.height - 1) + header.UsedRowBytes();
    if (needed > file_.Size() - header.firstPixel)
        ThrowDamaged(file_.Path(), "the file is too short for " + std::to_string(header.width) + " x " +
                                       std::to_string(header.height) + " pixels");
    info_.width = header.width;
    info_.height = header.height;
    info_.format = pixels_.Format();
    info_.palette = header.palette;
    const std::int64_t rowsInBand = BandBytes / header.StoredRowBytes();
    bandRows_ =
        static_cast<std::int32_t>(std::clamp(rowsInBand, std::int64_t{1}, std::int64_t{header.height}));
    band_ = ImageBuffer(file_.Path(), bandRows_ * header.StoredRowBytes());
}

void BmpReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    while (count > 0) {
        const std::int32_t part = std::min(count, bandRows_);
        ReadBand(rows, stride, part);
        rows += stride * part;
        row_ += part;
        count -= part;
    }
}

void BmpReader::ReadBand(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    const std::int32_t firstStored = header_.downwards ? row_ : header_.height - row_ - count;
    const std::int64_t storedBytes = header_.StoredRowBytes();
    const std::int64_t bytes = storedBytes * (count - 1) + header_.UsedRowBytes();
    file_.Seek(header_.firstPixel + firstStored * storedBytes);
    if (file_.ReadSome({band_.data(), static_cast<std::size_t>(bytes)}) < static_cast<std::size_t>(bytes))
        ThrowEndsBeforeRow(file_.Path(), row_);
    for (std::int32_t row = 0; row < count; ++row, rows += stride) {
        const std::int32_t stored = header_.downwards ? row : count - 1 - row;
        pixels_.Convert(band_.data() + stored * storedBytes, rows);
    }
}

} // namespace

std::unique_ptr<RowReader> OpenBmp(const std::filesystem::path& file,
                                   const std::filesystem::path& spoolFolder) {
    ImageFile opened(file);
    const BmpHeader header = ReadBmpHeader(opened);
    if (header.packing == BmpPacking::RunLengths)
        return std::make_unique<BmpRunReader>(std::move(opened), header, spoolFolder);
    return std::make_unique<BmpReader>(std::move(opened), header);
}
