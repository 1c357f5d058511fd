#include "component/readers/tiff/TiffRows.h"

#include "component/readers/common/ImageError.h"
#include "component/readers/tiff/TiffBlock.h"
#include "component/readers/tiff/TiffLargeRows.h"
#include "component/readers/tiff/TiffUnitRows.h"

#include <algorithm>

namespace {

/// Strips up to this size are unpacked as wholes, which the coders do faster than row by row. Larger ones
/// would keep a cancelled import waiting: the slowest coders unpack some 50 MB or, of one bit each, 100
/// megapixels a second.
constexpr std::int64_t MostStripBytes = std::int64_t{2} << 20;
constexpr std::int64_t MostPixels = std::int64_t{4} << 20;

/// Tiles up to this size are unpacked as wholes, as strips are.
constexpr std::int64_t MostTileBytes = std::int64_t{4} << 20;

/// A row of small tiles is in memory at a time; a sheet of a gigapixel needs some 25 MB.
constexpr std::int64_t MostTileRowBytes = std::int64_t{256} << 20;

/// The longest row of a plane: 64 million pixels of 16-bit RGBA.
constexpr std::int64_t MostRowBytes = std::int64_t{512} << 20;

/// All blocks of a band (a strip, or a row of tiles) at a time, put side by side.
class BandByBand : public TiffRows {
public:
    BandByBand(TiffFile& file, const TiffLayout& layout)
        : file_(file), layout_(layout), rowBytes_(TiffRowBytes(layout)),
          blockRowBytes_(TiffBlockRowBytes(layout)),
          bandRows_(std::min<std::int64_t>(layout.blockHeight, layout.height)) {
        bands_.resize(static_cast<std::size_t>(layout.Planes()));
        for (std::vector<std::uint8_t>& band : bands_)
            band = ImageBuffer(file.Path(), rowBytes_ * bandRows_);
        if (layout.tiled)
            block_ = ImageBuffer(file.Path(), blockRowBytes_ * layout.blockHeight);
    }

    void Next(const std::function<void()>& pause) override {
        ++row_;
        if (row_ % bandRows_ != 0)
            return;
        for (int plane = 0; plane < layout_.Planes(); ++plane) {
            if (layout_.tiled)
                ReadTiles(plane, pause);
            else
                ReadStrip(plane, pause);
        }
    }

    const std::uint8_t* Plane(int plane) const override {
        return bands_[static_cast<std::size_t>(plane)].data() + row_ % bandRows_ * rowBytes_;
    }

private:
    /// The first block of the band that the row lies in.
    std::int64_t FirstBlock(int plane) const {
        const std::int64_t down = (layout_.height + layout_.blockHeight - 1) / layout_.blockHeight;
        const std::int64_t across = (layout_.width + layout_.blockWidth - 1) / layout_.blockWidth;
        return (plane * down + row_ / layout_.blockHeight) * across;
    }

    void ReadStrip(int plane, const std::function<void()>& pause) {
        pause();
        const auto strip = static_cast<std::uint32_t>(FirstBlock(plane));
        const std::int64_t bytes = std::min<std::int64_t>(bandRows_, layout_.height - row_) * rowBytes_;
        std::vector<std::uint8_t>& band = bands_[static_cast<std::size_t>(plane)];
        if (IsTiffBlockLeftOut(file_, strip))
            std::fill(band.begin(), band.end(), std::uint8_t{0});
        else
            file_.Check(TIFFReadEncodedStrip(file_.Handle(), strip, band.data(), bytes) == bytes);
    }

    void ReadTiles(int plane, const std::function<void()>& pause) {
        std::int64_t tile = FirstBlock(plane);
        for (std::int64_t left = 0; left < rowBytes_; left += blockRowBytes_) {
            pause();
            ReadTile(static_cast<std::uint32_t>(tile++));
            PutTile(bands_[static_cast<std::size_t>(plane)], left);
        }
    }

    void ReadTile(std::uint32_t tile) {
        const auto bytes = static_cast<tmsize_t>(block_.size());
        if (IsTiffBlockLeftOut(file_, tile))
            std::fill(block_.begin(), block_.end(), std::uint8_t{0});
        else
            file_.Check(TIFFReadEncodedTile(file_.Handle(), tile, block_.data(), bytes) == bytes);
    }

    void PutTile(std::vector<std::uint8_t>& band, std::int64_t left) const {
        const std::int64_t inside = std::min(blockRowBytes_, rowBytes_ - left);
        const std::int64_t rows = std::min<std::int64_t>(bandRows_, layout_.height - row_);
        for (std::int64_t y = 0; y < rows; ++y)
            std::copy_n(block_.data() + y * blockRowBytes_, inside, band.data() + y * rowBytes_ + left);
    }

    TiffFile& file_;
    const TiffLayout layout_;
    std::int64_t rowBytes_;
    std::int64_t blockRowBytes_;
    std::int64_t bandRows_;
    std::int64_t row_ = -1;
    std::vector<std::vector<std::uint8_t>> bands_; ///< by plane
    std::vector<std::uint8_t> block_;
};

void CheckTileRows(const TiffFile& file, const TiffLayout& layout) {
    if (layout.blockWidth * layout.SamplesTogether() * layout.bits % 8 != 0)
        ThrowNotReadable(file.Path(), "the rows of its tiles do not end at a byte");
    if (TiffBlockRowBytes(layout) > MostRowBytes / layout.Planes())
        ThrowImageError(ErrorNumber::ImageTooLarge, file.Path(),
                        "the rows of its tiles are longer than the program accepts");
}

bool IsLarge(const TiffLayout& layout) {
    const std::int64_t rowBytes = TiffBlockRowBytes(layout) * (layout.tiled ? 1 : layout.Planes());
    return rowBytes > (layout.tiled ? MostTileBytes : MostStripBytes) / layout.blockHeight ||
           layout.blockWidth > MostPixels / layout.blockHeight ||
           TiffRowBytes(layout) * layout.Planes() >
               MostTileRowBytes / std::min<std::int64_t>(layout.blockHeight, layout.height);
}

/// Whether libtiff makes as much of a block as this program does.
void CheckBlockSize(const TiffFile& file, const TiffLayout& layout) {
    const std::uint64_t size = layout.tiled ? TIFFTileSize64(file.Handle()) : TIFFStripSize64(file.Handle());
    if (size != static_cast<std::uint64_t>(TiffBlockRowBytes(layout) * layout.blockHeight))
        ThrowDamaged(file.Path(), "the size of its strips or tiles contradicts itself");
}

std::unique_ptr<TiffRows> MakeUnitRows(TiffFile& file, const TiffLayout& layout,
                                       const std::filesystem::path& spoolFolder) {
    if (layout.blockWidth % layout.unitWidth != 0 && layout.tiled)
        ThrowNotReadable(file.Path(), "the rows of its tiles do not end where its colours do");
    return std::make_unique<TiffUnitRows>(layout,
                                          MakeTiffRows(file, TiffUnitRows::UnitLayout(layout), spoolFolder));
}

} // namespace

TiffSampleRun SampleRunOf(const TiffLayout& layout, const TiffRows& rows, int sample) {
    if (layout.separatePlanes)
        return {rows.Plane(sample), 0, 1};
    return {rows.Plane(0), static_cast<std::size_t>(sample), layout.samples};
}

std::int64_t TiffRowBytes(const TiffLayout& layout) {
    return (std::int64_t{layout.width} * layout.SamplesTogether() * layout.bits + 7) / 8;
}

std::unique_ptr<TiffRows> MakeTiffRows(TiffFile& file, const TiffLayout& layout,
                                       const std::filesystem::path& spoolFolder) {
    if (TiffRowBytes(layout) > MostRowBytes / layout.Planes())
        ThrowImageError(ErrorNumber::ImageTooLarge, file.Path(),
                        "its rows are longer than the program accepts");
    if (layout.IsSubsampled())
        return MakeUnitRows(file, layout, spoolFolder);
    if (layout.tiled)
        CheckTileRows(file, layout);
    if (IsLarge(layout))
        return MakeLargeTiffRows(file, layout, spoolFolder);
    CheckBlockSize(file, layout);
    return std::make_unique<BandByBand>(file, layout);
}
