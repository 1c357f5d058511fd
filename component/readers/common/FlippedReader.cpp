#include "component/readers/common/FlippedReader.h"

#include "component/readers/common/OrientedReader.h"

#include <algorithm>

namespace {

std::int64_t RowBytes(const ImageInfo& info) {
    return std::int64_t{info.width} * BytesPerPixel(info.format);
}

void MirrorRow(std::uint8_t* row, const ImageInfo& info) {
    const int bytes = BytesPerPixel(info.format);
    std::uint8_t* left = row;
    std::uint8_t* right = row + RowBytes(info) - bytes;
    for (; left < right; left += bytes, right -= bytes)
        std::swap_ranges(left, left + bytes, right);
}

} // namespace

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
    const auto band = static_cast<std::int32_t>(
        std::clamp(TurnBufferBytes / rowBytes, std::int64_t{1}, std::int64_t{info_.height}));
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
