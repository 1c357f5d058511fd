#include "component/readers/GifReader.h"

#include "component/readers/GifDecoder.h"
#include "component/readers/common/ImageError.h"

#include <algorithm>
#include <utility>

namespace {

/// Puts the frame's rows on the logical screen.
class GifReader : public RowReader {
public:
    GifReader(const std::filesystem::path& file, const std::filesystem::path& spoolFolder);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;
    void WatchForCancel(const Progress& progress) override { decoder_.WatchForCancel(progress); }

private:
    void ChooseFormat();
    void ReadIndices(std::uint8_t* indices);
    void Colour(std::uint8_t* row) const;

    GifDecoder decoder_;
    GifFrame frame_;
    Palette colours_;
    std::uint8_t outside_ = 0;          ///< index of the pixels outside the frame
    std::vector<std::uint8_t> indices_; ///< one row, where the answer is Rgba
    std::int32_t row_ = 0;
};

GifReader::GifReader(const std::filesystem::path& file, const std::filesystem::path& spoolFolder)
    : decoder_(file, spoolFolder), frame_(decoder_.Frame()), colours_(frame_.colours) {
    info_.width = std::max(frame_.screenWidth, frame_.left + frame_.width);
    info_.height = std::max(frame_.screenHeight, frame_.top + frame_.height);
    CheckImageSize(file, info_.width, info_.height);
    CheckPixelsPerByte(file, std::int64_t{info_.width} * info_.height, decoder_.FileSize());
    ChooseFormat();
    if (info_.format == PixelFormat::Rgba)
        indices_ = ImageBuffer(file, info_.width);
}

void GifReader::ChooseFormat() {
    const bool covered = frame_.width == info_.width && frame_.height == info_.height;
    const std::size_t known = colours_.size();
    colours_.resize(256); // indices without a colour are black
    if (frame_.transparent >= 0)
        colours_[static_cast<std::size_t>(frame_.transparent)].alpha = 0;
    info_.format = PixelFormat::Palette;
    if (!covered && frame_.transparent >= 0)
        outside_ = static_cast<std::uint8_t>(frame_.transparent);
    else if (!covered && known < colours_.size())
        outside_ = static_cast<std::uint8_t>(known);
    else if (!covered)
        info_.format = PixelFormat::Rgba;
    if (!covered && info_.format == PixelFormat::Palette)
        colours_[outside_].alpha = 0;
    if (info_.format == PixelFormat::Palette)
        info_.palette = colours_;
}

/// The next row of the screen, as indices.
void GifReader::ReadIndices(std::uint8_t* indices) {
    if (row_ < frame_.top || row_ >= frame_.top + frame_.height) {
        std::fill_n(indices, info_.width, outside_);
        return;
    }
    const std::int32_t right = frame_.left + frame_.width;
    std::fill_n(indices, frame_.left, outside_);
    decoder_.ReadRow(indices + frame_.left);
    std::fill(indices + right, indices + info_.width, outside_);
}

/// Turns indices into colours where no index was left for "outside the frame".
void GifReader::Colour(std::uint8_t* row) const {
    const bool inFrame = row_ >= frame_.top && row_ < frame_.top + frame_.height;
    for (std::int32_t column = 0; column < info_.width; ++column, row += 4) {
        PaletteEntry pixel{0, 0, 0, 0};
        if (inFrame && column >= frame_.left && column < frame_.left + frame_.width)
            pixel = colours_[indices_[static_cast<std::size_t>(column)]];
        row[0] = pixel.red;
        row[1] = pixel.green;
        row[2] = pixel.blue;
        row[3] = pixel.alpha;
    }
}

void GifReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    for (std::int32_t done = 0; done < count; ++done, ++row_, rows += stride) {
        ReadIndices(indices_.empty() ? rows : indices_.data());
        if (!indices_.empty())
            Colour(rows);
    }
}

} // namespace

std::unique_ptr<RowReader> OpenGif(const std::filesystem::path& file,
                                   const std::filesystem::path& spoolFolder) {
    return std::make_unique<GifReader>(file, spoolFolder);
}
