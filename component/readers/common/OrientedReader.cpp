#include "component/readers/common/OrientedReader.h"

#include "component/readers/common/SpoolFile.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

std::int64_t RowBytes(const ImageInfo& info) {
    return std::int64_t{info.width} * BytesPerPixel(info.format);
}

/// How many lines of so many bytes a buffer holds, at least one and at most `lines`.
std::int32_t LinesInBuffer(std::int64_t lineBytes, std::int32_t lines) {
    return static_cast<std::int32_t>(
        std::clamp(TurnBufferBytes / lineBytes, std::int64_t{1}, std::int64_t{lines}));
}

void MirrorRow(std::uint8_t* row, const ImageInfo& info) {
    const int bytes = BytesPerPixel(info.format);
    std::uint8_t* left = row;
    std::uint8_t* right = row + RowBytes(info) - bytes;
    for (; left < right; left += bytes, right -= bytes)
        std::swap_ranges(left, left + bytes, right);
}

/// Rows mirrored left to right, as they come.
class MirroredReader : public RowReader {
public:
    explicit MirroredReader(std::unique_ptr<RowReader> stored);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;
    void WatchForCancel(const Progress& progress) override;

private:
    std::unique_ptr<RowReader> stored_;
};

/// The last stored row first: BottomLeft, or BottomRight, which mirrors the rows as well.
class FlippedReader : public RowReader {
public:
    FlippedReader(std::unique_ptr<RowReader> stored, Orientation orientation,
                  const std::filesystem::path& spoolFolder);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;
    void WatchForCancel(const Progress& progress) override;

private:
    void SpoolRows();

    std::unique_ptr<RowReader> stored_; ///< empty once its rows are spooled
    SpoolFile spool_;
    std::int32_t row_ = 0;
};

MirroredReader::MirroredReader(std::unique_ptr<RowReader> stored) : stored_(std::move(stored)) {
    info_ = stored_->Info();
    info_.orientation = Orientation::TopRight;
    ShareRemarksOf(*stored_);
}

void MirroredReader::WatchForCancel(const Progress& progress) {
    stored_->WatchForCancel(progress);
}

void MirroredReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    stored_->ReadRows(rows, stride, count);
    for (std::int32_t row = 0; row < count; ++row, rows += stride)
        MirrorRow(rows, info_);
}

FlippedReader::FlippedReader(std::unique_ptr<RowReader> stored, Orientation orientation,
                             const std::filesystem::path& spoolFolder)
    : stored_(std::move(stored)), spool_(spoolFolder) {
    info_ = stored_->Info();
    info_.orientation = orientation;
    ShareRemarksOf(*stored_);
}

void FlippedReader::WatchForCancel(const Progress& progress) {
    RowReader::WatchForCancel(progress);
    if (stored_)
        stored_->WatchForCancel(progress);
}

void FlippedReader::SpoolRows() {
    const std::int64_t rowBytes = RowBytes(info_);
    const std::int32_t band = LinesInBuffer(rowBytes, info_.height);
    std::vector<std::uint8_t> rows(static_cast<std::size_t>(rowBytes * band));
    for (std::int32_t row = 0; row < info_.height; row += band) {
        ThrowIfCancelled();
        const std::int32_t count = std::min(band, info_.height - row);
        stored_->ReadRows(rows.data(), rowBytes, count);
        spool_.Write(row * rowBytes, {rows.data(), static_cast<std::size_t>(rowBytes * count)});
    }
    stored_.reset();
}

void FlippedReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    if (stored_)
        SpoolRows();
    const std::int64_t rowBytes = RowBytes(info_);
    for (std::int32_t done = 0; done < count; ++done, ++row_, rows += stride) {
        spool_.Read((info_.height - 1 - row_) * rowBytes, {rows, static_cast<std::size_t>(rowBytes)});
        if (info_.orientation == Orientation::BottomRight)
            MirrorRow(rows, info_);
    }
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

/// Stored columns as rows: the orientations LeftTop, RightTop, RightBottom and LeftBottom.
///
/// The temporary file holds the stored image as strips of some columns, one strip after the other, each strip
/// row by row. The decoder's rows are cut into the strips band by band; to answer, one whole strip is read
/// and transposed in memory, which gives as many displayed rows as the strip has columns. Band and strip are
/// as large as TurnBufferBytes allows, so that every read and write is long.
class TransposedReader : public RowReader {
public:
    TransposedReader(std::unique_ptr<RowReader> stored, Orientation orientation,
                     const std::filesystem::path& spoolFolder);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;
    void WatchForCancel(const Progress& progress) override;

private:
    // A stored image of W × H pixels is displayed with info_.width = H and info_.height = W.
    std::int32_t StoredWidth() const { return info_.height; }
    std::int32_t StoredHeight() const { return info_.width; }
    std::int32_t StripWidth(std::int32_t strip) const;
    std::int64_t StripOffset(std::int32_t strip) const;

    void SpoolStrips();
    void CutBand(std::int32_t row, std::int32_t count, const std::vector<std::uint8_t>& band);
    void LoadStrip(std::int32_t strip);

    std::unique_ptr<RowReader> stored_; ///< empty once its rows are spooled
    SpoolFile spool_;
    std::int32_t stripColumns_; ///< columns of every strip but the last
    bool columnsBackwards_;     ///< the last stored column is the first displayed row
    bool rowsBackwards_;        ///< the last stored row is the first displayed column
    std::int32_t row_ = 0;
    std::int32_t loadedStrip_ = -1;
    std::vector<std::uint8_t> part_;    ///< pixels of one strip as they lie in the file
    std::vector<std::uint8_t> columns_; ///< the loaded strip, its columns as rows
};

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

} // namespace

std::unique_ptr<RowReader> ApplyOrientation(std::unique_ptr<RowReader> reader, Orientation orientation,
                                            const std::filesystem::path& spoolFolder) {
    switch (orientation) {
    case Orientation::TopLeft:
        return reader;
    case Orientation::TopRight:
        return std::make_unique<MirroredReader>(std::move(reader));
    case Orientation::BottomRight:
    case Orientation::BottomLeft:
        return std::make_unique<FlippedReader>(std::move(reader), orientation, spoolFolder);
    case Orientation::LeftTop:
    case Orientation::RightTop:
    case Orientation::RightBottom:
    case Orientation::LeftBottom:
        return std::make_unique<TransposedReader>(std::move(reader), orientation, spoolFolder);
    }
    return reader;
}
