#include "component/imaging/TiffReader.h"

#include "component/imaging/OrientedReader.h"
#include "component/imaging/TiffConverted.h"
#include "component/imaging/TiffFile.h"
#include "component/imaging/TiffLayout.h"
#include "component/imaging/TiffPixels.h"
#include "component/imaging/TiffRows.h"

namespace {

class TiffReader : public RowReader {
public:
    TiffReader(std::unique_ptr<TiffFile> file, const TiffLayout& layout) : file_(std::move(file)) {
        info_.width = layout.width;
        info_.height = layout.height;
        info_.format = layout.Format();
        Palette palette;
        if (layout.colour == TiffColour::Indexed)
            palette = ReadTiffPalette(*file_, layout.bits);
        if (info_.format == PixelFormat::Palette)
            info_.palette = palette;
        file_->ForgetComplaints();
        if (layout.colour == TiffColour::Converted) {
            converted_ = std::make_unique<TiffConverted>(*file_, layout);
        } else {
            rows_ = MakeTiffRows(*file_, layout);
            pixels_ = std::make_unique<TiffPixels>(layout, std::move(palette));
        }
    }

    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override {
        const auto pause = [this] { ThrowIfCancelled(); };
        for (std::int32_t i = 0; i < count; ++i, rows += stride) {
            if (converted_) {
                converted_->Next(rows, pause);
            } else {
                rows_->Next(pause);
                pixels_->Convert(*rows_, rows);
            }
        }
    }

private:
    std::unique_ptr<TiffFile> file_;
    std::unique_ptr<TiffConverted> converted_; ///< this, or the two below
    std::unique_ptr<TiffRows> rows_;
    std::unique_ptr<TiffPixels> pixels_;
};

} // namespace

std::unique_ptr<RowReader> OpenTiff(const std::filesystem::path& file) {
    auto tiff = std::make_unique<TiffFile>(file);
    const TiffLayout layout = ReadTiffLayout(*tiff);
    return ApplyOrientation(std::make_unique<TiffReader>(std::move(tiff), layout), layout.orientation);
}
