#include "component/readers/common/ImageError.h"
#include "component/readers/tiff/TiffBlockKinds.h"
#include "component/readers/tiff/TiffUnpacker.h"

#include <webp/decode.h>

#include <algorithm>
#include <new>

namespace {

constexpr const char* Broken = "the WebP data of one of its strips or tiles are broken";

/// The decoder is given the stored bytes of about so many rows at a time: of fewer, it would decode the same
/// ones again and again.
constexpr std::size_t RowsAtOnce = 16;
constexpr std::size_t FewestBytesAtOnce = 256;

class WebpBlock : public TiffBlock {
public:
    WebpBlock(TiffFile& file, const TiffLayout& layout, std::uint32_t block)
        : file_(file), rowBytes_(static_cast<std::size_t>(TiffBlockRowBytes(layout))),
          stored_(ReadStored(file, block)) {
        if (WebPInitDecoderConfig(&config_) == 0 ||
            WebPGetFeatures(stored_.data(), stored_.size(), &config_.input) != VP8_STATUS_OK)
            ThrowDamaged(file_.Path(), Broken);
        Check(layout, TiffBlockRows(layout, block));
        pixels_ = ImageBuffer(file.Path(), static_cast<std::int64_t>(rowBytes_) * config_.input.height);
        config_.output.colorspace = layout.samples == 4 ? MODE_RGBA : MODE_RGB;
        config_.output.is_external_memory = 1;
        config_.output.u.RGBA = {pixels_.data(), static_cast<int>(rowBytes_), pixels_.size()};
        decoder_.reset(WebPIDecode(nullptr, 0, &config_));
        if (!decoder_)
            throw std::bad_alloc();
    }

    void ReadRow(std::span<std::uint8_t> row) override {
        while (row_ >= known_)
            DecodeMore();
        std::copy_n(pixels_.begin() + static_cast<std::ptrdiff_t>(rowBytes_) * row_++, row.size(),
                    row.begin());
    }

private:
    struct Delete {
        void operator()(WebPIDecoder* decoder) const { WebPIDelete(decoder); }
    };

    static std::vector<std::uint8_t> ReadStored(TiffFile& file, std::uint32_t block) {
        if (TIFFGetStrileByteCount(file.Handle(), block) > std::uint64_t{MostBlockMemory})
            ThrowBlockTooLarge(file);
        TiffBytes bytes(file, block);
        std::vector<std::uint8_t> all;
        for (auto piece = bytes.Next(); !piece.empty(); piece = bytes.Next())
            all.insert(all.end(), piece.begin(), piece.end());
        return all;
    }

    void Check(const TiffLayout& layout, std::int64_t rows) const {
        const WebPBitstreamFeatures& features = config_.input;
        const bool isColoured = layout.samples == 3 || layout.samples == 4;
        if (!isColoured || layout.separatePlanes || layout.bits != 8 || features.has_animation != 0 ||
            features.width != layout.blockWidth || features.height < rows)
            ThrowDamaged(file_.Path(),
                         "the WebP data of one of its strips or tiles are of another size or kind");
        // The coder without losses holds its own four bytes of each pixel, the other one at most the alpha.
        constexpr int Lossless = 2;
        const std::int64_t bytes = layout.samples + (features.format == Lossless ? 4 : 1);
        if (std::int64_t{features.width} * features.height > (MostBlockMemory - std::ssize(stored_)) / bytes)
            ThrowBlockTooLarge(file_);
    }

    void DecodeMore() {
        if (file_.Pause())
            file_.Pause()();
        if (given_ == stored_.size())
            ThrowDamaged(file_.Path(), Broken);
        const std::size_t more = stored_.size() * RowsAtOnce / static_cast<std::size_t>(config_.input.height);
        given_ = std::min(given_ + std::max(more, FewestBytesAtOnce), stored_.size());
        const VP8StatusCode status = WebPIUpdate(decoder_.get(), stored_.data(), given_);
        if (status == VP8_STATUS_OUT_OF_MEMORY)
            throw std::bad_alloc();
        if (status != VP8_STATUS_OK && status != VP8_STATUS_SUSPENDED)
            ThrowDamaged(file_.Path(), Broken);
        WebPIDecGetRGB(decoder_.get(), &known_, nullptr, nullptr, nullptr);
    }

    TiffFile& file_;
    const std::size_t rowBytes_;
    const std::vector<std::uint8_t> stored_;
    std::size_t given_ = 0; ///< of the stored bytes to the decoder
    std::vector<std::uint8_t> pixels_;
    int known_ = 0; ///< rows that are decoded
    int row_ = 0;
    WebPDecoderConfig config_{};
    std::unique_ptr<WebPIDecoder, Delete> decoder_;
};

} // namespace

std::unique_ptr<TiffBlock> OpenWebpBlock(TiffFile& file, const TiffLayout& layout, std::uint32_t block) {
    return std::make_unique<WebpBlock>(file, layout, block);
}
