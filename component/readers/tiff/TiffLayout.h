#pragma once

#include "component/readers/tiff/TiffFile.h"
#include "component/tiles/RowReader.h"

#include <cstdint>
#include <optional>

/// How a TIFF sample's bits are to be read.
enum class TiffNumber : std::uint8_t { Unsigned, Signed, Float };

/// What the colour samples of a pixel mean.
enum class TiffColour : std::uint8_t {
    Grey,        ///< one sample, 0 is black
    GreyInverse, ///< one sample, 0 is white
    Indexed,     ///< one sample, an index of up to 16 bits
    Rgb,         ///< three samples
    Cmyk,        ///< four samples, 0 is no ink
    Lab,         ///< three samples of 8 or 16 bits: L* unsigned, a* and b* signed
    Ycbcr,       ///< three samples of 8 bits, not in JPEG data; they may be subsampled
    Converted,   ///< old-style JPEG, which only libtiff turns into RGB
};

enum class TiffAlpha : std::uint8_t {
    None,
    Associated, ///< colours are stored multiplied by alpha
    Unassociated,
};

/// What the first page's tags say of its pixels, checked.
struct TiffLayout {
    std::int32_t width = 0;
    std::int32_t height = 0;
    Orientation orientation = Orientation::TopLeft;
    std::uint16_t bits = 8; ///< of a sample
    TiffNumber number = TiffNumber::Unsigned;
    std::uint16_t samples = 1; ///< of a pixel, those that are passed over included
    TiffColour colour = TiffColour::Grey;
    TiffAlpha alpha = TiffAlpha::None;
    std::uint16_t alphaSample = 0;
    bool separatePlanes = false; ///< each sample has strips or tiles of its own
    bool tiled = false;
    std::int64_t blockWidth = 0;  ///< of a tile or strip, in pixels
    std::int64_t blockHeight = 0; ///< likewise, at most the image's height for strips
    std::int64_t unitWidth = 1;   ///< pixels that share one Cb and one Cr, of TiffColour::Ycbcr
    std::int64_t unitHeight = 1;  ///< likewise

    int ColourSamples() const;
    /// Planes that are read: those up to the last sample that counts.
    int Planes() const;
    /// Samples that stand side by side in one plane.
    int SamplesTogether() const { return separatePlanes ? 1 : samples; }
    /// Whether the colours or alpha are numbers without a black and a white of their own, signed or
    /// floating-point ones, which are stretched.
    bool IsStretched() const;
    PixelFormat Format() const;
    bool IsSubsampled() const { return unitWidth * unitHeight > 1; }
};

/// Reads and checks the tags, and switches JPEG data to RGB, logarithmic data to 8 bits. Throws ImageDamaged,
/// ImageNotReadable or ImageTooLarge.
TiffLayout ReadTiffLayout(const TiffFile& file);

/// Coders of logarithms have several kinds of samples to give; these are to be bytes.
void AskTiffForBytes(const TiffFile& file, std::uint16_t compression);

/// The colour map as a palette of 2^bits entries. Old files have 8-bit values in the 16-bit map.
Palette ReadTiffPalette(const TiffFile& file, std::uint16_t bits);
