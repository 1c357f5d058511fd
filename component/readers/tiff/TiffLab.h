#pragma once

#include "component/readers/tiff/TiffFile.h"

#include <cstdint>

/// The conversion of L*a*b* to sRGB, as libtiff does it, for the white that the file names.
class TiffLab {
public:
    explicit TiffLab(const TiffFile& file);

    /// Lightness from 0 to 255 (white); `a` and `b` from -128 to 127.
    void ToRgb(std::uint8_t lightness, std::int8_t a, std::int8_t b, std::uint8_t* rgb) const;

private:
    mutable TIFFCIELabToRGB conversion_{}; ///< tables that libtiff's functions read
};
