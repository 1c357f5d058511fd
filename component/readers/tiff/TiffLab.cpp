#include "component/readers/tiff/TiffLab.h"

#include <algorithm>
#include <array>

namespace {

/// A screen of the sRGB standard: its primaries, light and gamma, 8 bits a colour.
TIFFDisplay StandardScreen() {
    return {{{3.2410F, -1.5374F, -0.4986F}, {-0.9692F, 1.8760F, 0.0416F}, {0.0556F, -0.2040F, 1.0570F}},
            100.0F,
            100.0F,
            100.0F,
            255,
            255,
            255,
            1.0F,
            1.0F,
            1.0F,
            2.4F,
            2.4F,
            2.4F};
}

/// The white of the file, or the standard's default, as XYZ with a light of 100.
std::array<float, 3> WhiteOf(const TiffFile& file) {
    const float* point = nullptr;
    if (TIFFGetFieldDefaulted(file.Handle(), TIFFTAG_WHITEPOINT, &point) != 1 || point == nullptr ||
        !(point[1] > 0))
        return {95.047F, 100.0F, 108.883F};
    return {point[0] / point[1] * 100, 100, (1 - point[0] - point[1]) / point[1] * 100};
}

std::uint8_t Byte(std::uint32_t colour) {
    return static_cast<std::uint8_t>(std::min(colour, 255U));
}

} // namespace

TiffLab::TiffLab(const TiffFile& file) {
    const TIFFDisplay screen = StandardScreen();
    std::array<float, 3> white = WhiteOf(file);
    TIFFCIELabToRGBInit(&conversion_, &screen, white.data());
}

void TiffLab::ToRgb(std::uint8_t lightness, std::int8_t a, std::int8_t b, std::uint8_t* rgb) const {
    std::array<float, 3> xyz{};
    std::array<std::uint32_t, 3> colours{};
    TIFFCIELabToXYZ(&conversion_, lightness, a, b, &xyz[0], &xyz[1], &xyz[2]);
    TIFFXYZToRGB(&conversion_, xyz[0], xyz[1], xyz[2], &colours[0], &colours[1], &colours[2]);
    std::ranges::transform(colours, rgb, Byte);
}
