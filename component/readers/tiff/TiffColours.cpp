#include "component/readers/tiff/TiffColours.h"

#include "component/readers/common/ImageError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

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

/// What libtiff asks for behind the head: a table of clamped values, and five of 256 numbers.
constexpr std::size_t TableBytes = sizeof(TIFFYCbCrToRGB) + 4 * 256 * sizeof(TIFFRGBValue) +
                                   2 * 256 * sizeof(int) + 3 * 256 * sizeof(std::int32_t);

std::array<float, 3> FactorsOf(const TiffFile& file) {
    std::array<float, 3> factors{0.299F, 0.587F, 0.114F};
    const float* stored = nullptr;
    if (TIFFGetFieldDefaulted(file.Handle(), TIFFTAG_YCBCRCOEFFICIENTS, &stored) == 1 && stored != nullptr)
        std::copy_n(stored, factors.size(), factors.begin());
    return factors;
}

std::array<float, 6> RangeOf(const TiffFile& file) {
    std::array<float, 6> range{0, 255, 128, 255, 128, 255};
    const float* stored = nullptr;
    if (TIFFGetFieldDefaulted(file.Handle(), TIFFTAG_REFERENCEBLACKWHITE, &stored) == 1 && stored != nullptr)
        std::copy_n(stored, range.size(), range.begin());
    return range;
}

bool AreFinite(std::span<const float> numbers) {
    return std::ranges::all_of(numbers, [](float number) { return std::isfinite(number); });
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

TiffYcbcr::TiffYcbcr(const TiffFile& file) : memory_(TableBytes / sizeof(std::uint64_t) + 1) {
    std::array<float, 3> factors = FactorsOf(file);
    std::array<float, 6> range = RangeOf(file);
    if (!AreFinite(factors) || !AreFinite(range) || factors[1] == 0 ||
        TIFFYCbCrToRGBInit(reinterpret_cast<TIFFYCbCrToRGB*>(memory_.data()), factors.data(), range.data()) <
            0)
        ThrowDamaged(file.Path(), "the factors of its YCbCr colours are none");
}

void TiffYcbcr::ToRgb(std::uint8_t luma, std::uint8_t cb, std::uint8_t cr, std::uint8_t* rgb) const {
    std::array<std::uint32_t, 3> colours{};
    // libtiff only reads the tables.
    auto* const tables = reinterpret_cast<TIFFYCbCrToRGB*>(const_cast<std::uint64_t*>(memory_.data()));
    TIFFYCbCrtoRGB(tables, luma, cb, cr, &colours[0], &colours[1], &colours[2]);
    std::ranges::transform(colours, rgb,
                           [](std::uint32_t colour) { return static_cast<std::uint8_t>(colour); });
}
