#include "component/tiles/Halving.h"

#include "base/ComponentError.h"

#include <algorithm>
#include <array>

namespace {

/// The mean of `Step` samples a pixel, each by itself. With one row only, that row is given twice: twice the
/// sum over twice the count is the same mean, rounded the same way.
template <std::size_t Step>
void MeanOfSamples(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t pairs,
                   std::uint8_t* out) {
    for (std::size_t i = 0; i < pairs; ++i, upper += 2 * Step, lower += 2 * Step, out += Step)
        for (std::size_t sample = 0; sample < Step; ++sample) {
            const unsigned sum =
                unsigned{upper[sample]} + upper[sample + Step] + lower[sample] + lower[sample + Step];
            out[sample] = static_cast<std::uint8_t>((sum + 2) / 4);
        }
}

template <std::size_t Step>
void HalveSamples(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t width,
                  std::uint8_t* out) {
    const std::size_t pairs = width / 2;
    MeanOfSamples<Step>(upper, lower, pairs, out);
    for (std::size_t sample = 0; width % 2 != 0 && sample < Step; ++sample) {
        const std::size_t at = 2 * pairs * Step + sample;
        out[pairs * Step + sample] = static_cast<std::uint8_t>((unsigned{upper[at]} + lower[at] + 1) / 2);
    }
}

/// The alpha-weighted mean of `count` pixels.
template <std::size_t Count>
void WeightedMean(const std::array<const std::uint8_t*, Count>& pixels, std::uint8_t* out) {
    std::array<unsigned, 3> sums{};
    unsigned weight = 0;
    for (const std::uint8_t* pixel : pixels) {
        for (std::size_t sample = 0; sample < 3; ++sample)
            sums[sample] += unsigned{pixel[sample]} * pixel[3];
        weight += pixel[3];
    }
    const unsigned alpha = (weight + unsigned{Count} / 2) / unsigned{Count};
    for (std::size_t sample = 0; sample < 3; ++sample)
        out[sample] =
            alpha == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>((sums[sample] + weight / 2) / weight);
    out[3] = static_cast<std::uint8_t>(alpha);
}

/// Whether none of the pixels is transparent at all.
bool IsOpaque(const std::uint8_t* pixels, std::size_t count) {
    unsigned all = 255;
    for (std::size_t i = 0; i < count; ++i)
        all &= pixels[4 * i + 3];
    return all == 255;
}

void HalveWeighted(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t width,
                   std::uint8_t* out) {
    // Most blocks of a sheet are opaque throughout, where the plain mean is the same and much faster.
    constexpr std::size_t Block = 64;
    const std::size_t pairs = width / 2;
    for (std::size_t first = 0; first < pairs; first += Block) {
        const std::size_t count = std::min(Block, pairs - first);
        const std::uint8_t* up = upper + 8 * first;
        const std::uint8_t* low = lower + 8 * first;
        std::uint8_t* to = out + 4 * first;
        if (IsOpaque(up, 2 * count) && IsOpaque(low, 2 * count)) {
            MeanOfSamples<4>(up, low, count, to);
            continue;
        }
        for (std::size_t i = 0; i < count; ++i, up += 8, low += 8, to += 4)
            WeightedMean<4>({up, up + 4, low, low + 4}, to);
    }
    if (width % 2 != 0)
        WeightedMean<2>({upper + 8 * pairs, lower + 8 * pairs}, out + 4 * pairs);
}

} // namespace

void HalveRows(const std::uint8_t* upper, const std::uint8_t* lower, std::int32_t width, PixelFormat format,
               std::uint8_t* out) {
    const auto count = static_cast<std::size_t>(width);
    if (lower == nullptr)
        lower = upper;
    switch (format) {
    case PixelFormat::Grey:
        HalveSamples<1>(upper, lower, count, out);
        return;
    case PixelFormat::Rgb:
        HalveSamples<3>(upper, lower, count, out);
        return;
    case PixelFormat::Rgba:
        HalveWeighted(upper, lower, count, out);
        return;
    case PixelFormat::Palette:
        break;
    }
    throw ComponentError(ErrorNumber::InvalidArgument, "Indices of a palette have no mean.");
}
