#pragma once

#include "component/readers/tiff/TiffColours.h"
#include "component/readers/tiff/TiffLayout.h"
#include "component/readers/tiff/TiffStretch.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

/// Makes pixels of a TIFF's stored rows.
///
/// CMYK becomes (255 - ink) × (255 - black) / 255, cut off, as libtiff converts it. Colours that are stored
/// multiplied by alpha are divided by it after their reduction to 8 bits: round(colour × 255 / alpha), at
/// most 255, and 0 where alpha is 0.
class TiffPixels {
public:
    /// `palette` is needed for palette images that become RGB or RGBA. Throws what a colour's own tags ask
    /// for.
    TiffPixels(const TiffFile& file, const TiffLayout& layout, Palette palette);

    /// For layouts that are stretched, before the first row.
    void SetRanges(const TiffRanges& ranges) { ranges_ = ranges; }

    /// One row of the layout's format.
    void Convert(const TiffRows& rows, std::uint8_t* out);

private:
    bool IsStoredAsKept() const;
    void Unpack(const TiffRows& rows, std::size_t channel, int sample);
    void UnpackColours(const TiffRows& rows);
    void LookUpColours();
    void ConvertLab(const TiffRows& rows);
    void ConvertYcbcr();
    void ToColours(std::size_t pixel, std::uint8_t* rgb) const;
    void PutGreys(std::uint8_t* out) const;
    void PutRgb(std::uint8_t* out) const;
    void PutRgba(std::uint8_t* out) const;

    static constexpr std::size_t AlphaChannel = 4;

    const TiffLayout layout_;
    const Palette palette_;
    std::optional<TiffLab> lab_;
    std::optional<TiffYcbcr> ycbcr_;
    std::array<std::vector<std::uint8_t>, 5> channels_; ///< up to four colours, and alpha
    TiffRanges ranges_;
    std::vector<double> values_;         ///< of one channel that is stretched
    std::vector<std::uint16_t> indices_; ///< into the palette
};
