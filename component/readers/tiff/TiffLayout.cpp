#include "component/readers/tiff/TiffLayout.h"

#include "component/readers/common/ImageError.h"
#include "component/readers/tiff/TiffNames.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace {

bool IsFax(std::uint16_t compression) {
    return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW ||
           compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

/// Facsimile coders need one bit for an empty row of any length, ZSTD some bytes for a whole strip: an honest
/// plate with little on it may be very small.
constexpr std::int64_t AlwaysAcceptedTiffPixels = std::int64_t{1} << 30;

bool IsLogarithmic(std::uint16_t compression) {
    return compression == COMPRESSION_SGILOG || compression == COMPRESSION_SGILOG24;
}

/// A file without the tag is taken as libtiff takes it.
std::uint16_t Photometric(const TiffFile& file, std::uint16_t compression, std::uint16_t samples) {
    std::uint16_t photometric = 0;
    if (TIFFGetField(file.Handle(), TIFFTAG_PHOTOMETRIC, &photometric) == 1)
        return photometric;
    if (samples >= 3)
        return PHOTOMETRIC_RGB;
    return IsFax(compression) ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
}

[[noreturn]] void ThrowPixelsNotReadable(const TiffFile& file) {
    ThrowNotReadable(file.Path(), "its " + TiffPixelsText(file) + " are of a kind that is not read");
}

/// LogL and LogLuv, which their coder turns into greys and RGB.
TiffColour LogarithmicColour(const TiffFile& file, const TiffLayout& layout, std::uint16_t compression) {
    const std::uint16_t photometric = file.Tag16(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    if (photometric == PHOTOMETRIC_LOGL && compression == COMPRESSION_SGILOG)
        return TiffColour::Grey;
    if (photometric == PHOTOMETRIC_LOGLUV && layout.samples == 3 && !layout.separatePlanes)
        return TiffColour::Rgb;
    ThrowPixelsNotReadable(file);
}

TiffColour ColourOf(const TiffFile& file, const TiffLayout& layout, std::uint16_t compression) {
    if (compression == COMPRESSION_OJPEG)
        return TiffColour::Converted;
    if (IsLogarithmic(compression))
        return LogarithmicColour(file, layout, compression);
    if (file.HasLostColourMap())
        ThrowDamaged(file.Path(), "its colour map cannot be read");
    const std::uint16_t photometric = Photometric(file, compression, layout.samples);
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
        return TiffColour::GreyInverse;
    case PHOTOMETRIC_MINISBLACK:
        return TiffColour::Grey;
    case PHOTOMETRIC_PALETTE:
        return TiffColour::Indexed;
    case PHOTOMETRIC_RGB:
        return TiffColour::Rgb;
    case PHOTOMETRIC_SEPARATED:
        if (file.Tag16(TIFFTAG_INKSET, INKSET_CMYK) != INKSET_CMYK)
            ThrowNotReadable(file.Path(), "its inks are not cyan, magenta, yellow and black");
        return TiffColour::Cmyk;
    case PHOTOMETRIC_YCBCR:
        // The JPEG library converts on its way; separate planes never meet there.
        if (compression == COMPRESSION_JPEG && !layout.separatePlanes)
            return TiffColour::Rgb;
        return TiffColour::Ycbcr;
    case PHOTOMETRIC_CIELAB:
        return TiffColour::Lab;
    case PHOTOMETRIC_LOGL:
    case PHOTOMETRIC_LOGLUV:
        ThrowPixelsNotReadable(file);
    default:
        ThrowNotReadable(file.Path(),
                         "its colours are of a kind (" + std::to_string(photometric) + ") that is not read");
    }
}

void ReadNumberKind(const TiffFile& file, TiffLayout& layout) {
    layout.bits = file.Tag16(TIFFTAG_BITSPERSAMPLE, 1);
    const std::uint16_t kind = file.Tag16(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    if (kind == SAMPLEFORMAT_INT)
        layout.number = TiffNumber::Signed;
    else if (kind == SAMPLEFORMAT_IEEEFP)
        layout.number = TiffNumber::Float;
    else if (kind != SAMPLEFORMAT_UINT && kind != SAMPLEFORMAT_VOID)
        ThrowNotReadable(file.Path(), "its samples are complex numbers");
}

void CheckNumberKind(const TiffFile& file, const TiffLayout& layout) {
    const std::uint16_t bits = layout.bits;
    const bool whole = bits == 8 || bits == 16 || bits == 24 || bits == 32 || bits == 64;
    bool known = layout.number == TiffNumber::Float    ? whole && bits != 8
                 : layout.number == TiffNumber::Signed ? whole
                                                       : whole || (bits >= 1 && bits < 32);
    if (layout.colour == TiffColour::Indexed)
        known = known && bits <= 16 && layout.number != TiffNumber::Float;
    if (layout.colour == TiffColour::Lab)
        known = (bits == 8 || bits == 16) && layout.number != TiffNumber::Float;
    if (!known)
        ThrowNotReadable(file.Path(),
                         "its samples of " + std::to_string(bits) + " bits are of a kind that is not read");
}

/// Alpha is looked for among the first samples only: each plane before it has to be read.
constexpr int MostSamplesToAlpha = 16;

/// The first of the extra samples that is alpha; all others are passed over.
void ReadAlpha(const TiffFile& file, TiffLayout& layout) {
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    if (TIFFGetFieldDefaulted(file.Handle(), TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1 || kinds == nullptr)
        return;
    const int first = layout.ColourSamples();
    for (int i = 0; i < count && first + i < std::min<int>(layout.samples, MostSamplesToAlpha); ++i) {
        if (kinds[i] != EXTRASAMPLE_ASSOCALPHA && kinds[i] != EXTRASAMPLE_UNASSALPHA)
            continue;
        layout.alpha = kinds[i] == EXTRASAMPLE_ASSOCALPHA ? TiffAlpha::Associated : TiffAlpha::Unassociated;
        layout.alphaSample = static_cast<std::uint16_t>(first + i);
        return;
    }
}

/// How many pixels share their colour.
void ReadUnits(const TiffFile& file, TiffLayout& layout) {
    std::uint16_t across = 2;
    std::uint16_t down = 2;
    TIFFGetFieldDefaulted(file.Handle(), TIFFTAG_YCBCRSUBSAMPLING, &across, &down);
    const auto isPower = [](std::uint16_t count) { return count == 1 || count == 2 || count == 4; };
    const bool isSubsampled = across != 1 || down != 1;
    if (layout.samples != 3 || layout.bits != 8 || layout.number != TiffNumber::Unsigned ||
        !isPower(across) || !isPower(down) || (isSubsampled && layout.separatePlanes))
        ThrowPixelsNotReadable(file);
    layout.unitWidth = across;
    layout.unitHeight = down;
}

void ReadBlocks(const TiffFile& file, TiffLayout& layout) {
    layout.tiled = TIFFIsTiled(file.Handle()) != 0;
    if (layout.tiled) {
        layout.blockWidth = file.Tag32(TIFFTAG_TILEWIDTH, 0);
        layout.blockHeight = file.Tag32(TIFFTAG_TILELENGTH, 0);
    } else {
        layout.blockWidth = layout.width;
        layout.blockHeight =
            std::min<std::int64_t>(file.Tag32(TIFFTAG_ROWSPERSTRIP, 0xFFFFFFFF), layout.height);
    }
    if (layout.blockWidth < 1 || layout.blockHeight < 1)
        ThrowDamaged(file.Path(), "its strips or tiles have no size");
}

Orientation ReadOrientation(const TiffFile& file) {
    const std::uint16_t value = file.Tag16(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    return value >= ORIENTATION_TOPLEFT && value <= ORIENTATION_LEFTBOT ? static_cast<Orientation>(value)
                                                                        : Orientation::TopLeft;
}

void CheckCompression(const TiffFile& file, std::uint16_t compression) {
    if (TIFFIsCODECConfigured(compression) == 0)
        ThrowNotReadable(file.Path(),
                         "its compression (" + TiffCompressionText(compression) + ") is not read");
}

} // namespace

void AskTiffForBytes(const TiffFile& file, std::uint16_t compression) {
    if (IsLogarithmic(compression))
        TIFFSetField(file.Handle(), TIFFTAG_SGILOGDATAFMT, SGILOGDATAFMT_8BIT);
    if (compression == COMPRESSION_PIXARLOG)
        TIFFSetField(file.Handle(), TIFFTAG_PIXARLOGDATAFMT, PIXARLOGDATAFMT_8BIT);
}

int TiffLayout::ColourSamples() const {
    if (colour == TiffColour::Cmyk)
        return 4;
    const bool isGrey = colour == TiffColour::Grey || colour == TiffColour::GreyInverse;
    return isGrey || colour == TiffColour::Indexed ? 1 : 3;
}

int TiffLayout::Planes() const {
    if (!separatePlanes)
        return 1;
    return alpha == TiffAlpha::None ? ColourSamples() : alphaSample + 1;
}

bool TiffLayout::IsStretched() const {
    return number != TiffNumber::Unsigned && colour != TiffColour::Converted && colour != TiffColour::Lab &&
           (colour != TiffColour::Indexed || alpha != TiffAlpha::None);
}

PixelFormat TiffLayout::Format() const {
    if (colour == TiffColour::Converted)
        return PixelFormat::Rgb;
    if (alpha != TiffAlpha::None)
        return PixelFormat::Rgba;
    if (colour == TiffColour::Indexed)
        return bits <= 8 ? PixelFormat::Palette : PixelFormat::Rgb;
    return ColourSamples() == 1 ? PixelFormat::Grey : PixelFormat::Rgb;
}

TiffLayout ReadTiffLayout(const TiffFile& file) {
    TiffLayout layout;
    const std::int64_t width = file.Tag32(TIFFTAG_IMAGEWIDTH, 0);
    const std::int64_t height = file.Tag32(TIFFTAG_IMAGELENGTH, 0);
    CheckImageSize(file.Path(), width, height);
    CheckPixelsPerByte(file.Path(), width * height, file.Size(), AlwaysAcceptedTiffPixels);
    layout.width = static_cast<std::int32_t>(width);
    layout.height = static_cast<std::int32_t>(height);
    layout.orientation = ReadOrientation(file);
    const std::uint16_t compression = file.Tag16(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    CheckCompression(file, compression);
    layout.samples = file.Tag16(TIFFTAG_SAMPLESPERPIXEL, 1);
    layout.separatePlanes =
        layout.samples > 1 && file.Tag16(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
    layout.colour = ColourOf(file, layout, compression);
    if (layout.samples < layout.ColourSamples() && layout.colour != TiffColour::Converted)
        ThrowDamaged(file.Path(), "its pixels have too few samples");
    if (compression == COMPRESSION_JPEG && layout.colour == TiffColour::Rgb)
        TIFFSetField(file.Handle(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    AskTiffForBytes(file, compression);
    ReadNumberKind(file, layout);
    if (layout.colour == TiffColour::Ycbcr)
        ReadUnits(file, layout);
    if (layout.colour != TiffColour::Converted) {
        CheckNumberKind(file, layout);
        ReadAlpha(file, layout);
    }
    ReadBlocks(file, layout);
    return layout;
}

Palette ReadTiffPalette(const TiffFile& file, std::uint16_t bits) {
    std::array<const std::uint16_t*, 3> maps{};
    if (TIFFGetField(file.Handle(), TIFFTAG_COLORMAP, &maps[0], &maps[1], &maps[2]) != 1)
        ThrowDamaged(file.Path(), "its colour map is missing");
    const std::size_t count = std::size_t{1} << bits;
    bool eightBits = true; // in the low byte
    bool shifted = true;   // in the high byte, with nothing below
    for (const std::uint16_t* map : maps)
        for (const std::uint16_t value : std::span(map, count)) {
            eightBits = eightBits && value < 256;
            shifted = shifted && value % 256 == 0;
        }
    const auto byte = [&](std::uint16_t value) {
        const int result = eightBits ? value : shifted ? value / 256 : (value + 128) / 257;
        return static_cast<std::uint8_t>(result);
    };
    Palette palette(count);
    for (std::size_t i = 0; i < count; ++i)
        palette[i] = PaletteEntry{byte(maps[0][i]), byte(maps[1][i]), byte(maps[2][i]), 255};
    return palette;
}
