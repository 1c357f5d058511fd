#include "component/readers/tiff/TiffReader.h"

#include "base/NumberText.h"
#include "component/readers/common/OrientedReader.h"
#include "component/readers/tiff/TiffConverted.h"
#include "component/readers/tiff/TiffFile.h"
#include "component/readers/tiff/TiffLayout.h"
#include "component/readers/tiff/TiffPixels.h"
#include "component/readers/tiff/TiffRows.h"
#include "component/readers/tiff/TiffStretch.h"

namespace {

class TiffReader : public RowReader {
public:
    TiffReader(std::unique_ptr<TiffFile> file, const TiffLayout& layout, std::filesystem::path spoolFolder)
        : file_(std::move(file)), layout_(layout), spoolFolder_(std::move(spoolFolder)),
          isToStretch_(layout.IsStretched()) {
        info_.width = layout.width;
        info_.height = layout.height;
        info_.format = layout.Format();
        Palette palette;
        if (layout.colour == TiffColour::Indexed)
            palette = ReadTiffPalette(*file_, layout.bits);
        if (info_.format == PixelFormat::Palette)
            info_.palette = palette;
        file_->ForgetComplaints();
        file_->PauseWith([this] { ThrowIfCancelled(); });
        if (layout.colour == TiffColour::Converted) {
            converted_ = std::make_unique<TiffConverted>(*file_, layout);
        } else {
            rows_ = MakeTiffRows(*file_, layout, spoolFolder_);
            pixels_ = std::make_unique<TiffPixels>(*file_, layout, std::move(palette));
        }
    }

    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override {
        const auto pause = [this] { ThrowIfCancelled(); };
        if (isToStretch_)
            FindRanges(pause);
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
    /// Goes over the whole page once and begins anew.
    void FindRanges(const std::function<void()>& pause) {
        const TiffRanges ranges = FindTiffRanges(*file_, layout_, *rows_, pause);
        pixels_->SetRanges(ranges);
        rows_.reset(); // before the others take their memory
        rows_ = MakeTiffRows(*file_, layout_, spoolFolder_);
        isToStretch_ = false;
        const char* kind = layout_.number == TiffNumber::Float ? "floating-point" : "signed";
        Remark("The " + std::string(kind) + " samples of the image '" + file_->Path().string() + "' from " +
               NumberToText(ranges.colours.black) + " to " + NumberToText(ranges.colours.white) +
               " were stretched to 0 to 255.");
    }

    std::unique_ptr<TiffFile> file_;
    const TiffLayout layout_;
    const std::filesystem::path spoolFolder_;
    bool isToStretch_;
    std::unique_ptr<TiffConverted> converted_; ///< this, or the two below
    std::unique_ptr<TiffRows> rows_;
    std::unique_ptr<TiffPixels> pixels_;
};

} // namespace

std::unique_ptr<RowReader> OpenTiff(const std::filesystem::path& file,
                                    const std::filesystem::path& spoolFolder) {
    auto tiff = std::make_unique<TiffFile>(file);
    const TiffLayout layout = ReadTiffLayout(*tiff);
    return ApplyOrientation(std::make_unique<TiffReader>(std::move(tiff), layout, spoolFolder),
                            layout.orientation, spoolFolder);
}
