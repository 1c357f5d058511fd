#pragma once

#include "component/readers/tiff/TiffFile.h"

#include <cstdint>
#include <vector>

/// The conversion of L*a*b* to sRGB, as libtiff does it, for the white that the file names.
class TiffLab {
public:
    explicit TiffLab(const TiffFile& file);

    /// Lightness from 0 to 255 (white); `a` and `b` from -128 to 127.
    void ToRgb(std::uint8_t lightness, std::int8_t a, std::int8_t b, std::uint8_t* rgb) const;

private:
    mutable TIFFCIELabToRGB conversion_{}; ///< tables that libtiff's functions read
};

/// The conversion of YCbCr to RGB, as libtiff does it, by the factors and the range that the file names.
class TiffYcbcr {
public:
    /// Throws ImageDamaged when the factors are none.
    explicit TiffYcbcr(const TiffFile& file);

    void ToRgb(std::uint8_t luma, std::uint8_t cb, std::uint8_t cr, std::uint8_t* rgb) const;

private:
    std::vector<std::uint64_t> memory_; ///< of the tables, as libtiff lays them out behind their head
};
