#include "component/readers/BmpRunReader.h"

#include "component/readers/BmpHeader.h"
#include "component/readers/common/ImageError.h"
#include "component/readers/common/ImageFile.h"
#include "component/readers/common/SpoolFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace {

constexpr int EndOfRow = 0;
constexpr int EndOfImage = 1;
constexpr int Move = 2;

/// Follows the codes of a run-length coded BMP: RLE4, RLE8, or OS/2's RLE24.
///
/// A pair (n, colour) is n pixels of one colour (RLE4: of two that alternate). A pair that begins with 0 is
/// 0: end of the row; 1: end of the image; 2: a move by the two bytes that follow, right and to later rows;
/// 3 and more: so many pixels as they are, filled up to an even number of bytes. Pixels beyond the row's end
/// are dropped.
class BmpRunDecoder {
public:
    BmpRunDecoder(ImageFile& file, const BmpHeader& header);

    /// Decodes the next codes, up to the end of a row or a move to another, and keeps the row that they end
    /// in the spool, row after row as stored. False at the end of the image. Throws ImageDamaged when the
    /// file ends before all rows are there and did not say that it would.
    bool DecodeRow(SpoolFile& spool);

private:
    static constexpr std::size_t BufferBytes = 1 << 16;

    int NextByte(); ///< -1 at the end of the file
    std::uint8_t RequiredByte();
    void Put(const std::uint8_t* pixel);
    void PutRun(int count);
    void PutLiterals(int count);
    void EndRow(SpoolFile& spool, int rows);
    bool IsComplete() const;

    ImageFile& file_;
    const BmpHeader& header_;
    std::size_t pixelBytes_;
    std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(BufferBytes);
    std::size_t next_ = 0;
    std::size_t end_ = 0;
    std::vector<std::uint8_t> pixels_; ///< the row that is being put together
    std::int64_t column_ = 0;
    std::int64_t row_ = 0;
};

BmpRunDecoder::BmpRunDecoder(ImageFile& file, const BmpHeader& header)
    : file_(file), header_(header), pixelBytes_(header.bits == 24 ? 3 : 1),
      pixels_(ImageBuffer(file.Path(), std::int64_t{header.width} * (header.bits == 24 ? 3 : 1))) {
    file_.Seek(header.firstPixel);
}

int BmpRunDecoder::NextByte() {
    if (next_ == end_) {
        next_ = 0;
        end_ = file_.ReadSome(buffer_);
        if (end_ == 0)
            return -1;
    }
    return buffer_[next_++];
}

std::uint8_t BmpRunDecoder::RequiredByte() {
    const int byte = NextByte();
    if (byte < 0)
        ThrowEndsBeforeRow(file_.Path(), header_.downwards ? row_ : header_.height - 1 - row_);
    return static_cast<std::uint8_t>(byte);
}

bool BmpRunDecoder::IsComplete() const {
    return row_ >= header_.height || (row_ == header_.height - 1 && column_ >= header_.width);
}

bool BmpRunDecoder::DecodeRow(SpoolFile& spool) {
    while (row_ < header_.height) {
        const int count = IsComplete() ? NextByte() : RequiredByte();
        if (count < 0) { // some writers leave out the last code
            EndRow(spool, 1);
            return false;
        }
        const int code = count == 0 ? RequiredByte() : 0;
        if (count > 0) {
            PutRun(count);
        } else if (code == EndOfRow) {
            EndRow(spool, 1);
            return true;
        } else if (code == EndOfImage) {
            EndRow(spool, header_.height);
            return false;
        } else if (code == Move) {
            column_ = std::min<std::int64_t>(column_ + RequiredByte(), header_.width);
            const int rows = RequiredByte();
            if (rows > 0) {
                const std::int64_t column = column_;
                EndRow(spool, rows);
                column_ = column;
                return true;
            }
        } else {
            PutLiterals(code);
        }
    }
    return false;
}

/// Keeps the row and goes on at the begin of a later one.
void BmpRunDecoder::EndRow(SpoolFile& spool, int rows) {
    spool.Write(row_ * static_cast<std::int64_t>(pixels_.size()), pixels_);
    std::ranges::fill(pixels_, std::uint8_t{0});
    column_ = 0;
    row_ += rows;
}

void BmpRunDecoder::Put(const std::uint8_t* pixel) {
    if (column_ < header_.width)
        std::copy_n(pixel, pixelBytes_, pixels_.data() + static_cast<std::size_t>(column_) * pixelBytes_);
    ++column_;
}

void BmpRunDecoder::PutRun(int count) {
    const std::uint8_t value = RequiredByte();
    std::array<std::uint8_t, 3> even{value}, odd{value};
    if (header_.bits == 4) {
        even[0] = value >> 4;
        odd[0] = value & 15;
    } else if (header_.bits == 24) {
        even[1] = RequiredByte();
        even[0] = RequiredByte();
        even[2] = value; // stored as blue, green, red
        odd = even;
    }
    for (int pixel = 0; pixel < count; ++pixel)
        Put(pixel % 2 == 0 ? even.data() : odd.data());
}

void BmpRunDecoder::PutLiterals(int count) {
    constexpr std::size_t MostBytes = 3 * std::size_t{255}; // the count is one byte, a pixel at most three
    const int bytes = (count * header_.bits + 7) / 8;
    std::array<std::uint8_t, MostBytes> values{};
    for (int byte = 0; byte < bytes; ++byte)
        values[static_cast<std::size_t>(byte)] = RequiredByte();
    if (bytes % 2 != 0)
        RequiredByte();
    for (std::size_t pixel = 0; pixel < static_cast<std::size_t>(count); ++pixel) {
        std::array<std::uint8_t, 3> colour{};
        if (header_.bits == 4)
            colour[0] = values[pixel / 2] >> (pixel % 2 == 0 ? 4 : 0) & 15;
        else if (header_.bits == 8)
            colour[0] = values[pixel];
        else
            colour = {values[3 * pixel + 2], values[3 * pixel + 1], values[3 * pixel]};
        Put(colour.data());
    }
}

} // namespace

BmpRunReader::BmpRunReader(ImageFile file, const BmpHeader& header, std::filesystem::path spoolFolder)
    : file_(std::move(file)), header_(header), spoolFolder_(std::move(spoolFolder)) {
    info_.width = header.width;
    info_.height = header.height;
    info_.format = header.bits == 24 ? PixelFormat::Rgb : PixelFormat::Palette;
    info_.palette = header.palette;
    CheckPixelsPerByte(file_.Path(), std::int64_t{header.width} * header.height, file_.Size());
}

void BmpRunReader::SpoolRows() {
    auto spool = std::make_unique<SpoolFile>(spoolFolder_);
    BmpRunDecoder decoder(file_, header_);
    do {
        ThrowIfCancelled();
    } while (decoder.DecodeRow(*spool));
    spool_ = std::move(spool);
}

void BmpRunReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    if (!spool_)
        SpoolRows();
    const std::int64_t rowBytes = std::int64_t{info_.width} * BytesPerPixel(info_.format);
    for (std::int32_t done = 0; done < count; ++done, ++row_, rows += stride) {
        const std::int64_t stored = header_.downwards ? row_ : info_.height - 1 - row_;
        spool_->Read(stored * rowBytes, {rows, static_cast<std::size_t>(rowBytes)});
    }
}
