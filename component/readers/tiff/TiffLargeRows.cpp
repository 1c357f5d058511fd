#include "component/readers/tiff/TiffLargeRows.h"

#include "component/readers/common/ImageError.h"
#include "component/readers/common/SpoolFile.h"
#include "component/readers/tiff/TiffBlock.h"

#include <algorithm>
#include <utility>

namespace {

/// Rows of a band that are put together at a time, in bytes.
constexpr std::int64_t WindowBytes = std::int64_t{16} << 20;

/// Where the blocks of an image stand.
class Bands {
public:
    explicit Bands(const TiffLayout& layout)
        : across_((layout.width + layout.blockWidth - 1) / layout.blockWidth),
          down_((layout.height + layout.blockHeight - 1) / layout.blockHeight), layout_(layout) {}

    std::int64_t Across() const { return across_; }
    /// The block at a column of blocks in the band that the row lies in.
    std::uint32_t Block(int plane, std::int64_t row, std::int64_t column) const {
        return static_cast<std::uint32_t>((plane * down_ + row / layout_.blockHeight) * across_ + column);
    }

private:
    std::int64_t across_;
    std::int64_t down_;
    const TiffLayout& layout_;
};

/// How many rows of a band are put together at a time.
std::int64_t WindowRows(const TiffLayout& layout) {
    const std::int64_t bytes = std::max(TiffRowBytes(layout) * layout.Planes(), TiffBlockRowBytes(layout));
    return std::clamp<std::int64_t>(WindowBytes / bytes, 1, layout.blockHeight);
}

std::vector<std::vector<std::uint8_t>> MakePlanes(const TiffFile& file, const TiffLayout& layout,
                                                  std::int64_t bytes) {
    std::vector<std::vector<std::uint8_t>> planes;
    for (int plane = 0; plane < layout.Planes(); ++plane)
        planes.push_back(ImageBuffer(file.Path(), bytes));
    return planes;
}

/// All blocks of a band are open at a time.
class OpenBlocks : public TiffRows {
public:
    OpenBlocks(TiffFile& file, const TiffLayout& layout, std::filesystem::path spoolFolder)
        : file_(file), layout_(layout), spoolFolder_(std::move(spoolFolder)),
          blockRow_(ImageBuffer(file.Path(), TiffBlockRowBytes(layout))),
          planes_(MakePlanes(file, layout, TiffRowBytes(layout))) {}

    void Next(const std::function<void()>& pause) override {
        pause();
        if (++row_ % layout_.blockHeight == 0)
            Open();
        std::size_t block = 0;
        for (std::vector<std::uint8_t>& plane : planes_)
            for (std::int64_t x = 0; x < bands_.Across(); ++x)
                ReadBlock(blocks_[block++].get(), plane, x * std::ssize(blockRow_));
    }

    const std::uint8_t* Plane(int plane) const override {
        return planes_[static_cast<std::size_t>(plane)].data();
    }

private:
    void Open() {
        blocks_.clear();
        for (int plane = 0; plane < layout_.Planes(); ++plane)
            for (std::int64_t x = 0; x < bands_.Across(); ++x) {
                const std::uint32_t block = bands_.Block(plane, row_, x);
                blocks_.push_back(IsTiffBlockLeftOut(file_, block)
                                      ? nullptr
                                      : OpenTiffBlock(file_, layout_, block, spoolFolder_));
            }
    }

    void ReadBlock(TiffBlock* block, std::vector<std::uint8_t>& plane, std::int64_t left) {
        if (block != nullptr)
            block->ReadRow(blockRow_);
        else
            std::ranges::fill(blockRow_, std::uint8_t{0});
        std::copy_n(blockRow_.begin(), std::min(std::ssize(blockRow_), std::ssize(plane) - left),
                    plane.begin() + left);
    }

    TiffFile& file_;
    const TiffLayout layout_;
    const std::filesystem::path spoolFolder_;
    const Bands bands_{layout_};
    std::int64_t row_ = -1;
    std::vector<std::unique_ptr<TiffBlock>> blocks_; ///< by plane, from the left; none for one left out
    std::vector<std::uint8_t> blockRow_;
    std::vector<std::vector<std::uint8_t>> planes_;
};

/// One block is open at a time: a band is put into a temporary file, block after block, and read from there.
class SpooledBlocks : public TiffRows {
public:
    SpooledBlocks(TiffFile& file, const TiffLayout& layout, std::filesystem::path spoolFolder)
        : file_(file), layout_(layout), spoolFolder_(std::move(spoolFolder)), rowBytes_(TiffRowBytes(layout)),
          blockRowBytes_(TiffBlockRowBytes(layout)), windowRows_(WindowRows(layout)),
          part_(ImageBuffer(file.Path(), windowRows_ * blockRowBytes_)),
          planes_(MakePlanes(file, layout, windowRows_ * rowBytes_)) {}

    void Next(const std::function<void()>& pause) override {
        pause();
        const std::int64_t inBand = ++row_ % layout_.blockHeight;
        if (inBand == 0)
            SpoolBand();
        if (inBand % windowRows_ == 0)
            LoadWindow(inBand, pause);
    }

    const std::uint8_t* Plane(int plane) const override {
        return planes_[static_cast<std::size_t>(plane)].data() +
               row_ % layout_.blockHeight % windowRows_ * rowBytes_;
    }

private:
    std::int64_t SpoolOffset(int plane, std::int64_t column, std::int64_t inBand) const {
        return ((plane * bands_.Across() + column) * layout_.blockHeight + inBand) * blockRowBytes_;
    }

    /// Each band has a file of its own, for what was written once is never overwritten there.
    void SpoolBand() {
        spool_.reset();
        spool_ = std::make_unique<SpoolFile>(spoolFolder_);
        for (int plane = 0; plane < layout_.Planes(); ++plane)
            for (std::int64_t x = 0; x < bands_.Across(); ++x)
                if (const std::uint32_t block = bands_.Block(plane, row_, x);
                    !IsTiffBlockLeftOut(file_, block))
                    SpoolBlock(block, SpoolOffset(plane, x, 0));
    }

    void SpoolBlock(std::uint32_t number, std::int64_t offset) {
        const std::unique_ptr<TiffBlock> block = OpenTiffBlock(file_, layout_, number, spoolFolder_);
        const std::int64_t rows = TiffBlockRows(layout_, number);
        for (std::int64_t row = 0; row < rows; row += windowRows_) {
            const std::int64_t count = std::min(windowRows_, rows - row);
            for (std::int64_t i = 0; i < count; ++i)
                block->ReadRow(Part(i * blockRowBytes_, blockRowBytes_));
            spool_->Write(offset + row * blockRowBytes_, Part(0, count * blockRowBytes_));
        }
    }

    std::span<std::uint8_t> Part(std::int64_t at, std::int64_t bytes) {
        return std::span(part_).subspan(static_cast<std::size_t>(at), static_cast<std::size_t>(bytes));
    }

    void LoadWindow(std::int64_t inBand, const std::function<void()>& pause) {
        const std::int64_t count =
            std::min({windowRows_, layout_.blockHeight - inBand, layout_.height - row_});
        for (int plane = 0; plane < layout_.Planes(); ++plane)
            for (std::int64_t x = 0; x < bands_.Across(); ++x) {
                pause();
                spool_->Read(SpoolOffset(plane, x, inBand), Part(0, count * blockRowBytes_));
                PutPart(planes_[static_cast<std::size_t>(plane)], x * blockRowBytes_, count);
            }
    }

    void PutPart(std::vector<std::uint8_t>& plane, std::int64_t left, std::int64_t count) const {
        const std::int64_t inside = std::min(blockRowBytes_, rowBytes_ - left);
        for (std::int64_t i = 0; i < count; ++i)
            std::copy_n(part_.begin() + i * blockRowBytes_, inside, plane.begin() + i * rowBytes_ + left);
    }

    TiffFile& file_;
    const TiffLayout layout_;
    const std::filesystem::path spoolFolder_;
    const Bands bands_{layout_};
    const std::int64_t rowBytes_;
    const std::int64_t blockRowBytes_;
    const std::int64_t windowRows_;
    std::int64_t row_ = -1;
    std::unique_ptr<SpoolFile> spool_;              ///< of the band
    std::vector<std::uint8_t> part_;                ///< rows of a block
    std::vector<std::vector<std::uint8_t>> planes_; ///< rows of the image
};

} // namespace

std::unique_ptr<TiffRows> MakeLargeTiffRows(TiffFile& file, const TiffLayout& layout,
                                            const std::filesystem::path& spoolFolder) {
    if (Bands(layout).Across() * layout.Planes() <= MostOpenTiffBlocks(file, layout))
        return std::make_unique<OpenBlocks>(file, layout, spoolFolder);
    return std::make_unique<SpooledBlocks>(file, layout, spoolFolder);
}
