#include "component/readers/common/ImageError.h"
#include "component/readers/common/JpegCodec.h"
#include "component/readers/tiff/TiffBlockKinds.h"
#include "component/readers/tiff/TiffUnpacker.h"

namespace {

/// The quantisation and Huffman tables that all blocks share, if the file keeps them apart.
std::span<const std::uint8_t> TablesOf(const TiffFile& file) {
    std::uint32_t count = 0;
    const std::uint8_t* tables = nullptr;
    if (TIFFGetField(file.Handle(), TIFFTAG_JPEGTABLES, &count, &tables) != 1 || tables == nullptr)
        return {};
    return {tables, count};
}

class JpegBlock : public TiffBlock {
public:
    JpegBlock(TiffFile& file, const TiffLayout& layout, std::uint32_t block,
              const std::filesystem::path& spoolFolder)
        : file_(file), bytes_(file, block), rows_(TiffBlockRows(layout, block)),
          codec_({file.Path(), [this] { return bytes_.Next(); }}, spoolFolder, TablesOf(file)) {
        CheckSize(layout);
        ChooseColours(layout);
        codec_.PauseWith(file.Pause());
    }

    void ReadRow(std::span<std::uint8_t> row) override {
        if (file_.Pause())
            file_.Pause()();
        codec_.ReadRow(row.data());
        if (++row_ == codec_.Header().image_height)
            codec_.Finish();
        if (codec_.EndMarkIsMissing())
            bytes_.ThrowDamaged("the JPEG data of one of its strips or tiles end too early");
    }

private:
    void CheckSize(const TiffLayout& layout) {
        const jpeg_decompress_struct& header = codec_.Header();
        if (header.image_width != layout.blockWidth || header.image_height < rows_ ||
            header.num_components != layout.SamplesTogether() || header.data_precision != layout.bits)
            bytes_.ThrowDamaged("the JPEG data of one of its strips or tiles are of another size or kind");
    }

    /// The tags say what the components are, whatever the JPEG data say themselves.
    void ChooseColours(const TiffLayout& layout) {
        const bool isYcbcr =
            file_.Tag16(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) == PHOTOMETRIC_YCBCR && !layout.separatePlanes;
        codec_.Header().jpeg_color_space = isYcbcr ? JCS_YCbCr : JCS_UNKNOWN;
        codec_.Header().out_color_space = isYcbcr ? JCS_RGB : JCS_UNKNOWN;
    }

    TiffFile& file_;
    TiffBytes bytes_;
    const std::int64_t rows_; ///< in the image
    std::int64_t row_ = 0;
    JpegCodec codec_;
};

} // namespace

std::unique_ptr<TiffBlock> OpenJpegBlock(TiffFile& file, const TiffLayout& layout, std::uint32_t block,
                                         const std::filesystem::path& spoolFolder) {
    return std::make_unique<JpegBlock>(file, layout, block, spoolFolder);
}
