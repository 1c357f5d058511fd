#pragma once

#include "component/readers/tiff/TiffRows.h"

#include <cstdint>
#include <memory>
#include <vector>

/// The conversion of YCbCr to RGB, as libtiff does it, by the factors and the range that the file names.
class TiffYcbcr {
public:
    /// Throws ImageDamaged when the factors are none.
    explicit TiffYcbcr(const TiffFile& file);

    void ToRgb(std::uint8_t luma, std::uint8_t cb, std::uint8_t cr, std::uint8_t* rgb) const;

private:
    std::vector<std::uint64_t> memory_; ///< of the tables, as libtiff lays them out behind their head
};

/// Rows of pixels of three samples from subsampled YCbCr. What is stored are units: the luma of the pixels
/// that share a colour, and then Cb and Cr. A row of units holds the pixels of several rows.
class TiffUnitRows : public TiffRows {
public:
    /// The rows of units are those of `units`, in UnitLayout.
    TiffUnitRows(const TiffLayout& layout, std::unique_ptr<TiffRows> units);

    /// The page with a unit for a pixel.
    static TiffLayout UnitLayout(const TiffLayout& layout);

    void Next(const std::function<void()>& pause) override;
    const std::uint8_t* Plane(int) const override { return row_.data(); }

private:
    const TiffLayout layout_;
    std::unique_ptr<TiffRows> units_;
    std::int64_t next_ = 0;
    std::vector<std::uint8_t> row_;
};
