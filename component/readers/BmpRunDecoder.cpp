#include "component/readers/BmpRunDecoder.h"

#include "component/readers/common/ImageError.h"

#include <algorithm>

namespace {

constexpr int EndOfRow = 0;
constexpr int EndOfImage = 1;
constexpr int Move = 2;

} // namespace

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
