#pragma once

#include "component/readers/tiff/TiffRows.h"
#include "component/readers/tiff/TiffUnpacker.h"

#include <optional>

/// Rows of strips or tiles of any size: each block of a band is unpacked by itself, a row at a time, so that
/// memory holds no more than a row and a few tables for each block beside each other.
class TiffStreamedRows : public TiffRows {
public:
    /// Nothing where the file's coder, its samples or their order are of a kind that only libtiff unpacks.
    static std::unique_ptr<TiffStreamedRows> TryMake(TiffFile& file, const TiffLayout& layout);

    void Next(const std::function<void()>& pause) override;
    const std::uint8_t* Plane(int plane) const override {
        return planes_[static_cast<std::size_t>(plane)].data();
    }

private:
    TiffStreamedRows(TiffFile& file, const TiffLayout& layout, bool hasDifferences);

    void OpenBlocks();
    std::unique_ptr<TiffUnpacker> OpenBlock(std::uint32_t block);
    void ReadPlane(std::size_t plane);
    void FinishRow();

    TiffFile& file_;
    const TiffLayout layout_;
    const bool hasDifferences_; ///< samples are stored as what they differ by from those before
    std::int64_t across_;       ///< blocks beside each other
    std::int64_t rowBytes_;
    std::int64_t row_ = -1;
    std::vector<std::unique_ptr<TiffUnpacker>> blocks_; ///< by plane, from the left; none for one left out
    std::vector<std::uint8_t> blockRow_;
    std::vector<std::vector<std::uint8_t>> planes_;
};
