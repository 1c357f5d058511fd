#include "component/readers/tiff/TiffNames.h"

#include <algorithm>
#include <array>

namespace {

struct Name {
    std::uint16_t number;
    const char* text;
};

/// What is common in the field beside the coders that libtiff knows.
constexpr std::array CompressionNames{
    Name{6, "old-style JPEG"},
    Name{9, "JBIG on black and white"},
    Name{10, "JBIG in colour"},
    Name{32766, "NeXT"},
    Name{32809, "ThunderScan"},
    Name{32895, "IT8 CT with padding"},
    Name{32896, "IT8 line work"},
    Name{32897, "IT8 monochrome"},
    Name{32898, "IT8 binary line art"},
    Name{32908, "Pixar film"},
    Name{32909, "Pixar log"},
    Name{32947, "Kodak DCS"},
    Name{33003, "JPEG 2000"},
    Name{33004, "JPEG 2000"},
    Name{33005, "JPEG 2000"},
    Name{34661, "JBIG"},
    Name{34676, "SGI log"},
    Name{34677, "SGI log of 24 bits"},
    Name{34712, "JPEG 2000"},
    Name{34713, "Nikon raw"},
    Name{34715, "JBIG2"},
    Name{34718, "document imaging of Microsoft"},
    Name{34719, "document imaging of Microsoft"},
    Name{34720, "document imaging of Microsoft"},
    Name{34887, "LERC"},
    Name{34892, "lossy JPEG of a raw picture"},
    Name{34925, "LZMA"},
    Name{34926, "ZSTD"},
    Name{34927, "WebP"},
    Name{34933, "PNG"},
    Name{34934, "JPEG XR"},
    Name{50000, "ZSTD"},
    Name{50001, "WebP"},
    Name{50002, "JPEG XL"},
    Name{52546, "JPEG XL"},
    Name{65000, "Kodak raw"},
};

constexpr std::array ColourNames{
    Name{PHOTOMETRIC_YCBCR, "YCbCr"},     Name{PHOTOMETRIC_LOGL, "LogL"},
    Name{PHOTOMETRIC_LOGLUV, "LogLuv"},   Name{PHOTOMETRIC_MINISBLACK, "grey"},
    Name{PHOTOMETRIC_MINISWHITE, "grey"}, Name{PHOTOMETRIC_RGB, "RGB"},
    Name{PHOTOMETRIC_PALETTE, "palette"}, Name{PHOTOMETRIC_SEPARATED, "ink"},
};

const char* Find(const auto& names, std::uint16_t number) {
    const auto found = std::ranges::find(names, number, &Name::number);
    return found != names.end() ? found->text : nullptr;
}

} // namespace

std::string TiffCompressionText(std::uint16_t compression) {
    const char* name = Find(CompressionNames, compression);
    return name != nullptr ? name : std::to_string(compression);
}

std::string TiffPixelsText(const TiffFile& file) {
    const char* name = Find(ColourNames, file.Tag16(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB));
    return std::string(name != nullptr ? name : "coloured") + " pixels of " +
           std::to_string(file.Tag16(TIFFTAG_SAMPLESPERPIXEL, 1)) + " samples of " +
           std::to_string(file.Tag16(TIFFTAG_BITSPERSAMPLE, 1)) + " bits";
}
