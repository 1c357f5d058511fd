#include "component/readers/tiff/TiffRows.h"

#include "component/readers/common/ImageError.h"
#include "component/readers/tiff/TiffStreamedRows.h"

#include <algorithm>

namespace {

/// Strips up to this size are unpacked as wholes, which the coders do faster than row by row. Larger ones
/// would keep a cancelled import waiting: the slowest coders unpack some 50 MB or, of one bit each, 100
/// megapixels a second.
constexpr std::int64_t MostStripBytes = std::int64_t{2} << 20;
constexpr std::int64_t MostStripPixels = std::int64_t{4} << 20;

/// Strips that take more bytes as stored are no longer read into memory to be unpacked.
constexpr std::uint64_t MostStoredBytes = std::uint64_t{16} << 20;

/// Tiles up to this size are unpacked as wholes, as strips are.
constexpr std::int64_t MostTileBytes = std::int64_t{4} << 20;

/// A row of tiles must be in memory at a time where they are unpacked as wholes; a sheet of a gigapixel needs
/// some 25 MB, 100,000 pixels of 16-bit RGB in tiles of 512 some 300 MB.
constexpr std::int64_t MostTileRowBytes = std::int64_t{512} << 20;

/// The longest row of a plane: 64 million pixels of 16-bit RGBA.
constexpr std::int64_t MostRowBytes = std::int64_t{512} << 20;

/// Every row by itself. Rows of separate planes lie far apart, and a coder cannot jump: each plane is read
/// through a file of its own.
class RowByRow : public TiffRows {
public:
    RowByRow(TiffFile& file, const TiffLayout& layout) {
        planes_.push_back({&file, nullptr, {}});
        for (int plane = 1; plane < layout.Planes(); ++plane) {
            auto own = std::make_unique<TiffFile>(file.Path());
            own->ForgetComplaints();
            own->PauseWith(file.Pause());
            TiffFile* const at = own.get();
            planes_.push_back({at, std::move(own), {}});
        }
        for (PlaneRow& plane : planes_)
            plane.row = ImageBuffer(file.Path(), TiffRowBytes(layout));
    }

    void Next(const std::function<void()>& pause) override {
        pause();
        for (std::size_t i = 0; i < planes_.size(); ++i) {
            PlaneRow& plane = planes_[i];
            plane.file->Check(TIFFReadScanline(plane.file->Handle(), plane.row.data(), next_,
                                               static_cast<std::uint16_t>(i)) == 1);
        }
        ++next_;
    }

    const std::uint8_t* Plane(int plane) const override {
        return planes_[static_cast<std::size_t>(plane)].row.data();
    }

private:
    struct PlaneRow {
        TiffFile* file;
        std::unique_ptr<TiffFile> own;
        std::vector<std::uint8_t> row;
    };
    std::vector<PlaneRow> planes_;
    std::uint32_t next_ = 0;
};

/// All blocks of a band (a strip, or a row of tiles) at a time, put side by side.
class BandByBand : public TiffRows {
public:
    BandByBand(TiffFile& file, const TiffLayout& layout)
        : file_(file), layout_(layout), rowBytes_(TiffRowBytes(layout)),
          blockRowBytes_(layout.tiled ? static_cast<std::int64_t>(TIFFTileRowSize64(file.Handle()))
                                      : rowBytes_),
          bandRows_(std::min<std::int64_t>(layout.blockHeight, layout.height)) {
        bands_.resize(static_cast<std::size_t>(layout.Planes()));
        for (std::vector<std::uint8_t>& band : bands_)
            band = ImageBuffer(file.Path(), rowBytes_ * bandRows_);
        if (layout.tiled)
            block_ = ImageBuffer(file.Path(), static_cast<std::int64_t>(TIFFTileSize64(file.Handle())));
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
    void ReadStrip(int plane, const std::function<void()>& pause) {
        pause();
        const std::int64_t perPlane = (layout_.height + layout_.blockHeight - 1) / layout_.blockHeight;
        const auto strip = static_cast<std::uint32_t>(plane * perPlane + row_ / layout_.blockHeight);
        const std::int64_t bytes = std::min<std::int64_t>(bandRows_, layout_.height - row_) * rowBytes_;
        std::vector<std::uint8_t>& band = bands_[static_cast<std::size_t>(plane)];
        if (IsTiffBlockLeftOut(file_, strip))
            std::fill(band.begin(), band.end(), std::uint8_t{0});
        else
            file_.Check(TIFFReadEncodedStrip(file_.Handle(), strip, band.data(), bytes) == bytes);
    }

    void ReadTiles(int plane, const std::function<void()>& pause) {
        const auto y = static_cast<std::uint32_t>(row_);
        for (std::int64_t x = 0; x < layout_.width; x += layout_.blockWidth) {
            pause();
            ReadTile(TIFFComputeTile(file_.Handle(), static_cast<std::uint32_t>(x), y, 0,
                                     static_cast<std::uint16_t>(plane)));
            PutTile(bands_[static_cast<std::size_t>(plane)], x / layout_.blockWidth * blockRowBytes_);
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

std::int64_t TileRowBits(const TiffLayout& layout) {
    return layout.blockWidth * layout.SamplesTogether() * layout.bits;
}

void CheckTileRows(const TiffFile& file, const TiffLayout& layout) {
    if (TileRowBits(layout) % 8 != 0)
        ThrowNotReadable(file.Path(), "the rows of its tiles do not end at a byte");
    if (TileRowBits(layout) / 8 > MostRowBytes / layout.Planes())
        ThrowImageError(ErrorNumber::ImageTooLarge, file.Path(),
                        "the rows of its tiles are longer than the program accepts");
}

bool AreTilesLarge(const TiffLayout& layout) {
    return TileRowBits(layout) / 8 > MostTileBytes / layout.blockHeight ||
           layout.blockWidth > MostStripPixels / layout.blockHeight;
}

void CheckWholeTiles(const TiffFile& file, const TiffLayout& layout) {
    const std::int64_t tileRow = TileRowBits(layout);
    // A tile may reach far beyond the image, so it counts by itself as well.
    const std::int64_t most = MostTileRowBytes / layout.Planes();
    if (tileRow / 8 > most / layout.blockHeight ||
        TiffRowBytes(layout) > most / std::min<std::int64_t>(layout.blockHeight, layout.height))
        ThrowImageError(ErrorNumber::ImageTooLarge, file.Path(),
                        "its tiles are larger than the program accepts in this compression");
    if (TIFFTileRowSize64(file.Handle()) * 8 != static_cast<std::uint64_t>(tileRow) ||
        TIFFTileSize64(file.Handle()) * 8 != static_cast<std::uint64_t>(tileRow * layout.blockHeight))
        ThrowDamaged(file.Path(), "the size of its tiles contradicts itself");
}

std::unique_ptr<TiffRows> MakeTileRows(TiffFile& file, const TiffLayout& layout) {
    CheckTileRows(file, layout);
    if (AreTilesLarge(layout))
        if (std::unique_ptr<TiffRows> streamed = TiffStreamedRows::TryMake(file, layout))
            return streamed;
    CheckWholeTiles(file, layout);
    return std::make_unique<BandByBand>(file, layout);
}

bool HasLongStoredStrip(const TiffFile& file) {
    const std::uint32_t strips = TIFFNumberOfStrips(file.Handle());
    for (std::uint32_t strip = 0; strip < strips; ++strip)
        if (TIFFGetStrileByteCount(file.Handle(), strip) > MostStoredBytes)
            return true;
    return false;
}

std::unique_ptr<TiffRows> MakeLargeStripRows(TiffFile& file, const TiffLayout& layout) {
    if (HasLongStoredStrip(file))
        if (std::unique_ptr<TiffRows> streamed = TiffStreamedRows::TryMake(file, layout))
            return streamed;
    return std::make_unique<RowByRow>(file, layout);
}

} // namespace

bool IsTiffBlockLeftOut(const TiffFile& file, std::uint32_t block) {
    return TIFFGetStrileOffset(file.Handle(), block) == 0 &&
           TIFFGetStrileByteCount(file.Handle(), block) == 0;
}

TiffSampleRun SampleRunOf(const TiffLayout& layout, const TiffRows& rows, int sample) {
    if (layout.separatePlanes)
        return {rows.Plane(sample), 0, 1};
    return {rows.Plane(0), static_cast<std::size_t>(sample), layout.samples};
}

std::int64_t TiffRowBytes(const TiffLayout& layout) {
    return (std::int64_t{layout.width} * layout.SamplesTogether() * layout.bits + 7) / 8;
}

std::unique_ptr<TiffRows> MakeTiffRows(TiffFile& file, const TiffLayout& layout) {
    const std::int64_t rowBytes = TiffRowBytes(layout);
    if (rowBytes > MostRowBytes / layout.Planes())
        ThrowImageError(ErrorNumber::ImageTooLarge, file.Path(),
                        "its rows are longer than the program accepts");
    if (layout.tiled)
        return MakeTileRows(file, layout);
    if (TIFFScanlineSize64(file.Handle()) != static_cast<std::uint64_t>(rowBytes))
        ThrowDamaged(file.Path(), "the length of its rows contradicts itself");
    if (rowBytes * layout.Planes() > MostStripBytes / layout.blockHeight ||
        layout.width > MostStripPixels / layout.blockHeight)
        return MakeLargeStripRows(file, layout);
    return std::make_unique<BandByBand>(file, layout);
}
