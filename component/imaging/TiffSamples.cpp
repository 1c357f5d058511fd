#include "component/imaging/TiffSamples.h"

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

/// A number of fewer than 16 bits that need not begin at a byte, the most significant bit first.
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

/// Calls `toByte` with the address of each sample of `Bytes` bytes.
template <std::size_t Bytes, class ToByte>
void ForEach(const std::uint8_t* row, std::size_t first, std::size_t step, std::span<std::uint8_t> out,
             const ToByte& toByte) {
    const std::uint8_t* sample = row + first * Bytes;
    for (std::uint8_t& byte : out) {
        byte = toByte(sample);
        sample += step * Bytes;
    }
}

template <class Number>
void UnpackFullRange(const std::uint8_t* row, std::size_t first, std::size_t step,
                     std::span<std::uint8_t> out) {
    ForEach<sizeof(Number)>(row, first, step, out, [](const std::uint8_t* sample) {
        return FullRangeByte(LoadNumber<Number>(sample));
    });
}

template <class Number>
void UnpackValues(const TiffLayout& layout, const std::uint8_t* row, std::size_t first, std::size_t step,
                  std::span<std::uint8_t> out) {
    const double scale = 255 / (layout.whiteValue - layout.blackValue);
    const bool isHalf = layout.number == TiffNumber::Float && sizeof(Number) == 2;
    ForEach<sizeof(Number)>(row, first, step, out, [&](const std::uint8_t* sample) {
        const double value = isHalf ? HalfValue(LoadNumber<std::uint16_t>(sample))
                                    : static_cast<double>(LoadNumber<Number>(sample));
        const double level = std::floor((value - layout.blackValue) * scale + 0.5);
        if (!(level > 0)) // so that NaN is black too
            return std::uint8_t{0};
        return level >= 255 ? std::uint8_t{255} : static_cast<std::uint8_t>(level);
    });
}

void UnpackUnsigned(std::uint16_t bits, const std::uint8_t* row, std::size_t first, std::size_t step,
                    std::span<std::uint8_t> out) {
    switch (bits) {
    case 8:
        return UnpackFullRange<std::uint8_t>(row, first, step, out);
    case 16:
        return UnpackFullRange<std::uint16_t>(row, first, step, out);
    case 32:
        return UnpackFullRange<std::uint32_t>(row, first, step, out);
    case 64:
        return UnpackFullRange<std::uint64_t>(row, first, step, out);
    default:
        break;
    }
    const std::uint32_t most = (1U << bits) - 1;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::uint32_t value = LoadBits(row, (first + i * step) * bits, bits);
        out[i] = static_cast<std::uint8_t>((value * 255 + most / 2) / most);
    }
}

} // namespace

void UnpackTiffSamples(const TiffLayout& layout, const std::uint8_t* row, std::size_t first, std::size_t step,
                       std::span<std::uint8_t> out) {
    if (layout.number == TiffNumber::Unsigned)
        return UnpackUnsigned(layout.bits, row, first, step, out);
    const bool isFloat = layout.number == TiffNumber::Float;
    switch (layout.bits) {
    case 8:
        return UnpackValues<std::int8_t>(layout, row, first, step, out);
    case 16: // a half is told apart inside
        return UnpackValues<std::int16_t>(layout, row, first, step, out);
    case 32:
        return isFloat ? UnpackValues<float>(layout, row, first, step, out)
                       : UnpackValues<std::int32_t>(layout, row, first, step, out);
    default:
        return isFloat ? UnpackValues<double>(layout, row, first, step, out)
                       : UnpackValues<std::int64_t>(layout, row, first, step, out);
    }
}

void UnpackTiffIndices(std::uint16_t bits, const std::uint8_t* row, std::size_t first, std::size_t step,
                       std::span<std::uint8_t> out) {
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::size_t at = first + i * step;
        out[i] = bits == 8 ? row[at] : static_cast<std::uint8_t>(LoadBits(row, at * bits, bits));
    }
}
