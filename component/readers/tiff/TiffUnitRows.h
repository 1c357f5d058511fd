#pragma once

#include "component/readers/tiff/TiffRows.h"

#include <cstdint>
#include <memory>
#include <vector>

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
