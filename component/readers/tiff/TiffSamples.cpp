#include "component/readers/tiff/TiffSamples.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

template <class Number>
Number LoadNumber(const std::uint8_t* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

/// A number of up to 31 bits that need not begin at a byte, the most significant bit first.
std::uint32_t LoadBits(const std::uint8_t* row, std::size_t firstBit, unsigned bits) {
    std::uint32_t value = 0;
    for (std::size_t bit = firstBit; bit < firstBit + bits; ++bit)
        value = value << 1 | (row[bit / 8] >> (7 - bit % 8) & 1U);
    return value;
}

template <class Number>
std::uint8_t FullRangeByte(Number value) {
    constexpr auto Most = std::numeric_limits<Number>::max();
    if constexpr (sizeof(Number) == 8)
        return FullRangeByte(static_cast<std::uint32_t>(value >> 32));
    else
        return static_cast<std::uint8_t>((std::uint64_t{value} * 255 + Most / 2) / Most);
}

/// A 16-bit floating-point number (IEEE 754 binary16), which the language has no type for.
double HalfValue(std::uint16_t half) {
    const int exponent = half >> 10 & 0x1F;
    const int fraction = half & 0x3FF;
    double value = 0;
    if (exponent == 31)
        value = fraction == 0 ? std::numeric_limits<double>::infinity()
                              : std::numeric_limits<double>::quiet_NaN();
    else if (exponent == 0)
        value = std::ldexp(fraction, -24);
    else
        value = std::ldexp(fraction + 1024, exponent - 25);
    return (half & 0x8000) != 0 ? -value : value;
}

/// A number of three bytes, the least significant first on every machine that this program runs on.
std::uint32_t LoadThreeBytes(const std::uint8_t* bytes) {
    static_assert(std::endian::native == std::endian::little);
    return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16;
}

/// A 24-bit floating-point number as the format's makers define it: 7 bits of exponent, 16 of fraction.
double ThreeByteValue(std::uint32_t bits) {
    constexpr int Bias = 63;
    const int exponent = static_cast<int>(bits >> 16 & 0x7F);
    const int fraction = static_cast<int>(bits & 0xFFFF);
    double value = 0;
    if (exponent == 0x7F)
        value = fraction == 0 ? std::numeric_limits<double>::infinity()
                              : std::numeric_limits<double>::quiet_NaN();
    else if (exponent == 0)
        value = std::ldexp(fraction, 1 - Bias - 16);
    else
        value = std::ldexp(fraction + 0x10000, exponent - Bias - 16);
    return (bits & 0x800000) != 0 ? -value : value;
}

/// Calls `convert` with the address of each sample of `Bytes` bytes.
template <std::size_t Bytes, class Out, class Convert>
void ForEach(const TiffSampleRun& run, std::span<Out> out, const Convert& convert) {
    const std::uint8_t* sample = run.row + run.first * Bytes;
    for (Out& target : out) {
        target = convert(sample);
        sample += run.step * Bytes;
    }
}

template <class Number>
void UnpackFullRange(const TiffSampleRun& run, std::span<std::uint8_t> out) {
    ForEach<sizeof(Number)>(
        run, out, [](const std::uint8_t* sample) { return FullRangeByte(LoadNumber<Number>(sample)); });
}

template <class Number>
void LoadValues(const TiffSampleRun& run, std::span<double> out) {
    ForEach<sizeof(Number)>(
        run, out, [](const std::uint8_t* sample) { return static_cast<double>(LoadNumber<Number>(sample)); });
}

void LoadFloats(std::uint16_t bits, const TiffSampleRun& run, std::span<double> out) {
    switch (bits) {
    case 16:
        return ForEach<2>(run, out, [](const std::uint8_t* sample) {
            return HalfValue(LoadNumber<std::uint16_t>(sample));
        });
    case 24:
        return ForEach<3>(run, out,
                          [](const std::uint8_t* sample) { return ThreeByteValue(LoadThreeBytes(sample)); });
    case 32:
        return LoadValues<float>(run, out);
    default:
        return LoadValues<double>(run, out);
    }
}

void LoadSigned(std::uint16_t bits, const TiffSampleRun& run, std::span<double> out) {
    switch (bits) {
    case 8:
        return LoadValues<std::int8_t>(run, out);
    case 16:
        return LoadValues<std::int16_t>(run, out);
    case 24:
        return ForEach<3>(run, out, [](const std::uint8_t* sample) {
            return static_cast<double>(static_cast<std::int32_t>(LoadThreeBytes(sample) << 8) >> 8);
        });
    case 32:
        return LoadValues<std::int32_t>(run, out);
    default:
        return LoadValues<std::int64_t>(run, out);
    }
}

/// The most common of the narrow samples, and those of the largest plates.
void UnpackBits(const TiffSampleRun& run, std::span<std::uint8_t> out) {
    std::size_t bit = run.first;
    for (std::uint8_t& target : out) {
        target = (run.row[bit / 8] >> (7 - bit % 8) & 1U) != 0 ? 255 : 0;
        bit += run.step;
    }
}

} // namespace

void UnpackTiffSamples(const TiffLayout& layout, const TiffSampleRun& run, std::span<std::uint8_t> out) {
    const std::uint16_t bits = layout.bits;
    switch (bits) {
    case 1:
        return UnpackBits(run, out);
    case 8:
        return UnpackFullRange<std::uint8_t>(run, out);
    case 16:
        return UnpackFullRange<std::uint16_t>(run, out);
    case 24:
        return ForEach<3>(run, out, [](const std::uint8_t* sample) {
            constexpr std::uint64_t Most = 0xFFFFFF;
            return static_cast<std::uint8_t>((std::uint64_t{LoadThreeBytes(sample)} * 255 + Most / 2) / Most);
        });
    case 32:
        return UnpackFullRange<std::uint32_t>(run, out);
    case 64:
        return UnpackFullRange<std::uint64_t>(run, out);
    default:
        break;
    }
    const std::uint64_t most = (std::uint64_t{1} << bits) - 1;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::uint64_t value = LoadBits(run.row, (run.first + i * run.step) * bits, bits);
        out[i] = static_cast<std::uint8_t>((value * 255 + most / 2) / most);
    }
}

void LoadTiffValues(const TiffLayout& layout, const TiffSampleRun& run, std::span<double> out) {
    if (layout.number == TiffNumber::Float)
        LoadFloats(layout.bits, run, out);
    else
        LoadSigned(layout.bits, run, out);
}

void StretchTiffValues(std::span<const double> values, const TiffRange& range, std::span<std::uint8_t> out) {
    // In halves, for the whole range may be more than a double holds.
    const double half = range.white / 2 - range.black / 2;
    const double scale = half > 0 ? 255 / half : 0;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double level = std::floor((values[i] / 2 - range.black / 2) * scale + 0.5);
        if (values[i] >= range.white && values[i] > range.black)
            out[i] = 255;
        else // what is no number is black, too
            out[i] = level > 0 ? static_cast<std::uint8_t>(std::min(level, 255.0)) : std::uint8_t{0};
    }
}

void UnpackTiffIndices(std::uint16_t bits, const TiffSampleRun& run, std::span<std::uint16_t> out) {
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::size_t at = run.first + i * run.step;
        if (bits == 8)
            out[i] = run.row[at];
        else if (bits == 16)
            out[i] = LoadNumber<std::uint16_t>(run.row + 2 * at);
        else
            out[i] = static_cast<std::uint16_t>(LoadBits(run.row, at * bits, bits));
    }
}
