#include "component/readers/tiff/TiffYcbcr.h"

#include "component/readers/common/ImageError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace {

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

std::int64_t Units(std::int64_t pixels, std::int64_t unit) {
    return (pixels + unit - 1) / unit;
}

} // namespace

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

TiffUnitRows::TiffUnitRows(const TiffLayout& layout, std::unique_ptr<TiffRows> units)
    : layout_(layout), units_(std::move(units)), row_(static_cast<std::size_t>(TiffRowBytes(layout))) {}

TiffLayout TiffUnitRows::UnitLayout(const TiffLayout& layout) {
    TiffLayout units = layout;
    const std::int64_t whole = layout.height / layout.blockHeight, rest = layout.height % layout.blockHeight;
    units.blockWidth = Units(layout.blockWidth, layout.unitWidth);
    units.blockHeight = Units(layout.blockHeight, layout.unitHeight);
    units.width = static_cast<std::int32_t>(Units(layout.width, layout.unitWidth));
    units.height = static_cast<std::int32_t>(whole * units.blockHeight + Units(rest, layout.unitHeight));
    units.samples = static_cast<std::uint16_t>(layout.unitWidth * layout.unitHeight + 2);
    units.unitWidth = units.unitHeight = 1;
    return units;
}

void TiffUnitRows::Next(const std::function<void()>& pause) {
    const std::int64_t inUnit = next_++ % layout_.blockHeight % layout_.unitHeight;
    if (inUnit == 0)
        units_->Next(pause);
    const std::int64_t lumas = layout_.unitWidth * layout_.unitHeight;
    const std::uint8_t* unit = units_->Plane(0);
    std::uint8_t* out = row_.data();
    for (std::int64_t x = 0; x < layout_.width; ++x) {
        const std::int64_t inRow = x % layout_.unitWidth;
        if (x > 0 && inRow == 0)
            unit += lumas + 2;
        *out++ = unit[inUnit * layout_.unitWidth + inRow];
        *out++ = unit[lumas];
        *out++ = unit[lumas + 1];
    }
}
