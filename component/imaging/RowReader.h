#pragma once

#include "base/Progress.h"
#include "component/imaging/PixelFormat.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

/// Which way a stored image is to be turned for display; the numbers are those of the Exif and TIFF
/// orientation tags: the value says where the first stored row and column lie in the displayed image.
enum class Orientation : std::uint8_t {
    TopLeft = 1,     ///< as stored
    TopRight = 2,    ///< mirrored left to right
    BottomRight = 3, ///< turned by 180 degrees
    BottomLeft = 4,  ///< mirrored top to bottom
    LeftTop = 5,     ///< mirrored about the main diagonal
    RightTop = 6,    ///< turned by 90 degrees clockwise
    RightBottom = 7, ///< mirrored about the other diagonal
    LeftBottom = 8,  ///< turned by 90 degrees anticlockwise
};

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

/// Opens an image file of any supported kind: BMP, GIF, JPEG, TIFF or PNG. The content decides the kind, not
/// the name. Grey, 8-bit palette, RGB and RGBA pixels stay as they are; 16-bit samples become round(v / 257);
/// CMYK, YCbCr and Lab are converted as the codec libraries do; signed and floating-point samples are
/// stretched between their extremes; colour profiles are not applied; Exif and TIFF orientation are. GIF: the
/// first frame on the logical screen. TIFF: the first page. Errors: FileNotFound, FileNotReadable (a folder,
/// a device, no permission), ImageNotReadable (no image, or of a kind that is not read), ImageDamaged,
/// ImageTooLarge, OutOfMemory.
std::unique_ptr<RowReader> OpenImage(const std::filesystem::path& file);
