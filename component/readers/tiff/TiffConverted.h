#pragma once

#include "component/readers/tiff/TiffLayout.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

/// Rows of old-style JPEG, which libtiff converts to RGB as whole strips or rows of tiles.
class TiffConverted {
public:
    /// Throws ImageNotReadable when libtiff does not convert it, ImageTooLarge when one strip or row of tiles
    /// would need more memory than is sensible. The file must outlive the object.
    TiffConverted(TiffFile& file, const TiffLayout& layout);

    /// The next row, three bytes a pixel. Throws ImageDamaged.
    void Next(std::uint8_t* out, const std::function<void()>& pause);

private:
    struct EndImage {
        void operator()(TIFFRGBAImage* image) const;
    };

    void ReadBand();

    TiffFile& file_;
    std::int64_t width_;
    std::int64_t height_;
    std::int64_t bandRows_;
    std::int64_t row_ = 0;
    std::unique_ptr<TIFFRGBAImage, EndImage> image_;
    std::vector<std::uint32_t> band_;
};
