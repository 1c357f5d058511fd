#pragma once

#include "base/Progress.h"
#include "component/Orientation.h"
#include "component/PixelFormat.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// What is known of an image before its pixels are read.
struct ImageInfo {
    std::int32_t width = 0;  ///< pixels of the displayed image, 1 to MaxImageSide
    std::int32_t height = 0; ///< likewise
    PixelFormat format = PixelFormat::Rgb;
    Palette palette; ///< filled for PixelFormat::Palette only
    /// The turn that has been applied already; numbers that count stored pixels (a worldfile's) need it too.
    Orientation orientation = Orientation::TopLeft;
};

/// Longest side that is accepted, in pixels.
inline constexpr std::int32_t MaxImageSide = 2147483647 - 1024;

/// Most pixels that are accepted: ten gigapixels times six. More is taken for a decompression bomb.
inline constexpr std::int64_t MaxImagePixels = std::int64_t{1} << 36;

/// An image that is decoded row by row from the top, so that memory does not grow with the image.
class RowReader {
public:
    virtual ~RowReader() = default;

    const ImageInfo& Info() const { return info_; }

    /// Decodes the next `count` rows (never more than remain), the first to `rows`, each next one `stride`
    /// bytes further. A row is width × BytesPerPixel(format) bytes. Throws ErrorNumber::ImageDamaged, naming
    /// file and reason, when the image breaks off or contradicts itself.
    virtual void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) = 0;

    /// Some kinds (interlaced, progressive, turned) must decode the whole image before they can give the
    /// first row. From now on such a long ReadRows ends with ErrorNumber::Cancelled soon after
    /// progress.Cancel(); `progress` must outlive the reader's use.
    virtual void WatchForCancel(const Progress& progress) { progress_ = &progress; }

    /// What of the image was passed over, or shown otherwise than it is stored: one sentence each, naming
    /// the file. Complete once all rows are read.
    const std::vector<std::string>& Remarks() const { return *remarks_; }

protected:
    void Remark(std::string sentence) { remarks_->push_back(std::move(sentence)); }
    /// For a reader over another one, which may end before this does.
    void ShareRemarksOf(const RowReader& stored) { remarks_ = stored.remarks_; }
    void ThrowIfCancelled() const {
        if (progress_ != nullptr)
            progress_->ThrowIfCancelled();
    }

    ImageInfo info_;

private:
    const Progress* progress_ = nullptr;
    std::shared_ptr<std::vector<std::string>> remarks_ = std::make_shared<std::vector<std::string>>();
};
