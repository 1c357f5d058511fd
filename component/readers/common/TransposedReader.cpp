#include "component/readers/common/TransposedReader.h"

#include "component/readers/common/OrientedReader.h"

#include <algorithm>
#include <cstring>

namespace {

/// How many lines of so many bytes a buffer holds, at least one and at most `lines`.
std::int32_t LinesInBuffer(std::int64_t lineBytes, std::int32_t lines) {
    return static_cast<std::int32_t>(
        std::clamp(TurnBufferBytes / lineBytes, std::int64_t{1}, std::int64_t{lines}));
}

/// Writes the columns of `rows` × `columns` pixels as rows; backwards from the last row if asked. Goes by
/// square blocks, so that both sides stay in the processor's cache.
template <std::size_t PixelBytes>
void Transpose(const std::uint8_t* source, std::size_t rows, std::size_t columns, bool backwards,
               std::uint8_t* target) {
    constexpr std::size_t Block = 32;
    for (std::size_t top = 0; top < rows; top += Block)
        for (std::size_t left = 0; left < columns; left += Block)
            for (std::size_t column = left; column < std::min(left + Block, columns); ++column)
                for (std::size_t row = top; row < std::min(top + Block, rows); ++row) {
                    const std::size_t place = backwards ? rows - 1 - row : row;
                    std::memcpy(target + (column * rows + place) * PixelBytes,
                                source + (row * columns + column) * PixelBytes, PixelBytes);
                }
}

std::int32_t ColumnsOfAStrip(const ImageInfo& stored) {
    return LinesInBuffer(std::int64_t{stored.height} * BytesPerPixel(stored.format), stored.width);
}

} // namespace

TransposedReader::TransposedReader(std::unique_ptr<RowReader> stored, Orientation orientation,
                                   const std::filesystem::path& spoolFolder)
    : stored_(std::move(stored)), spool_(spoolFolder), stripColumns_(ColumnsOfAStrip(stored_->Info())),
      columnsBackwards_(orientation == Orientation::RightBottom || orientation == Orientation::LeftBottom),
      rowsBackwards_(orientation == Orientation::RightTop || orientation == Orientation::RightBottom) {
    info_ = stored_->Info();
    std::swap(info_.width, info_.height);
    info_.orientation = orientation;
    ShareRemarksOf(*stored_);
}

void TransposedReader::WatchForCancel(const Progress& progress) {
    RowReader::WatchForCancel(progress);
    if (stored_)
        stored_->WatchForCancel(progress);
}

std::int32_t TransposedReader::StripWidth(std::int32_t strip) const {
    const std::int64_t left = std::int64_t{strip} * stripColumns_;
    return static_cast<std::int32_t>(std::min<std::int64_t>(stripColumns_, StoredWidth() - left));
}

std::int64_t TransposedReader::StripOffset(std::int32_t strip) const {
    return std::int64_t{strip} * stripColumns_ * StoredHeight() * BytesPerPixel(info_.format);
}

void TransposedReader::SpoolStrips() {
    const std::int64_t rowBytes = std::int64_t{StoredWidth()} * BytesPerPixel(info_.format);
    const std::int32_t bandRows = LinesInBuffer(rowBytes, StoredHeight());
    std::vector<std::uint8_t> band(static_cast<std::size_t>(rowBytes * bandRows));
    for (std::int32_t row = 0; row < StoredHeight(); row += bandRows) {
        ThrowIfCancelled();
        const std::int32_t count = std::min(bandRows, StoredHeight() - row);
        stored_->ReadRows(band.data(), rowBytes, count);
        CutBand(row, count, band);
    }
    stored_.reset();
}

void TransposedReader::CutBand(std::int32_t row, std::int32_t count, const std::vector<std::uint8_t>& band) {
    const int pixelBytes = BytesPerPixel(info_.format);
    const std::uint8_t* begin = band.data();
    for (std::int32_t strip = 0; std::int64_t{strip} * stripColumns_ < StoredWidth(); ++strip) {
        const std::int64_t partBytes = std::int64_t{StripWidth(strip)} * pixelBytes;
        part_.resize(static_cast<std::size_t>(partBytes * count));
        for (std::int32_t line = 0; line < count; ++line)
            std::copy_n(begin + std::int64_t{line} * StoredWidth() * pixelBytes, partBytes,
                        part_.data() + line * partBytes);
        spool_.Write(StripOffset(strip) + row * partBytes, part_);
        begin += partBytes;
    }
}

void TransposedReader::LoadStrip(std::int32_t strip) {
    const auto rows = static_cast<std::size_t>(StoredHeight());
    const auto columns = static_cast<std::size_t>(StripWidth(strip));
    part_.resize(rows * columns * static_cast<std::size_t>(BytesPerPixel(info_.format)));
    columns_.resize(part_.size());
    spool_.Read(StripOffset(strip), part_);
    switch (BytesPerPixel(info_.format)) {
    case 1:
        Transpose<1>(part_.data(), rows, columns, rowsBackwards_, columns_.data());
        break;
    case 3:
        Transpose<3>(part_.data(), rows, columns, rowsBackwards_, columns_.data());
        break;
    default:
        Transpose<4>(part_.data(), rows, columns, rowsBackwards_, columns_.data());
        break;
    }
    loadedStrip_ = strip;
}

void TransposedReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    if (stored_)
        SpoolStrips();
    const std::int64_t rowBytes = std::int64_t{info_.width} * BytesPerPixel(info_.format);
    for (std::int32_t done = 0; done < count; ++done, ++row_, rows += stride) {
        const std::int32_t column = columnsBackwards_ ? StoredWidth() - 1 - row_ : row_;
        if (column / stripColumns_ != loadedStrip_)
            LoadStrip(column / stripColumns_);
        std::copy_n(columns_.data() + column % stripColumns_ * rowBytes, rowBytes, rows);
    }
}
