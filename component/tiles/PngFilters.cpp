#include "component/tiles/PngFilters.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr std::uint8_t Sum(unsigned a, unsigned b) {
    return static_cast<std::uint8_t>(a + b);
}

/// The pixel to the left is kept in registers: read back from memory just written it would cost several
/// times as much.
template <std::size_t Step>
void UndoSub(std::span<const std::uint8_t> row, std::uint8_t* out) {
    std::array<std::uint8_t, Step> left{};
    for (std::size_t i = 0; i + Step <= row.size(); i += Step)
        for (std::size_t sample = 0; sample < Step; ++sample) {
            left[sample] = Sum(left[sample], row[i + sample]);
            out[i + sample] = left[sample];
        }
}

void UndoUp(std::span<const std::uint8_t> row, std::span<const std::uint8_t> above, std::uint8_t* out) {
    for (std::size_t i = 0; i < row.size(); ++i)
        out[i] = Sum(row[i], above[i]);
}

template <std::size_t Step>
void UndoAverage(std::span<const std::uint8_t> row, std::span<const std::uint8_t> above, std::uint8_t* out) {
    std::array<unsigned, Step> left{};
    for (std::size_t i = 0; i + Step <= row.size(); i += Step)
        for (std::size_t sample = 0; sample < Step; ++sample) {
            const unsigned up = above.empty() ? 0U : above[i + sample];
            out[i + sample] = Sum(row[i + sample], (left[sample] + up) / 2);
            left[sample] = out[i + sample];
        }
}

/// Of the pixels left, above and above left the one nearest to left + above - above left; ties in that order.
unsigned PaethPredictor(int left, int up, int corner) {
    const int toLeft = std::abs(up - corner);
    const int toUp = std::abs(left - corner);
    const int toCorner = std::abs(left + up - 2 * corner);
    if (toLeft <= toUp && toLeft <= toCorner)
        return static_cast<unsigned>(left);
    return static_cast<unsigned>(toUp <= toCorner ? up : corner);
}

template <std::size_t Step>
void UndoPaeth(std::span<const std::uint8_t> row, std::span<const std::uint8_t> above, std::uint8_t* out) {
    std::array<int, Step> left{};
    std::array<int, Step> corner{};
    for (std::size_t i = 0; i + Step <= row.size(); i += Step)
        for (std::size_t sample = 0; sample < Step; ++sample) {
            const int up = above.empty() ? 0 : above[i + sample];
            out[i + sample] = Sum(row[i + sample], PaethPredictor(left[sample], up, corner[sample]));
            left[sample] = out[i + sample];
            corner[sample] = up;
        }
}

template <std::size_t Step>
bool UndoFilter(PngFilter filter, std::span<const std::uint8_t> row, std::span<const std::uint8_t> above,
                std::uint8_t* out) {
    switch (filter) {
    case PngFilter::Sub:
        UndoSub<Step>(row, out);
        return true;
    case PngFilter::Average:
        UndoAverage<Step>(row, above, out);
        return true;
    case PngFilter::Paeth:
        UndoPaeth<Step>(row, above, out);
        return true;
    case PngFilter::Up:
        if (!above.empty()) {
            UndoUp(row, above, out);
            return true;
        }
        [[fallthrough]]; // above the first row stands nothing but zeros
    case PngFilter::None:
        if (out != row.data())
            std::copy(row.begin(), row.end(), out);
        return true;
    }
    return false;
}

} // namespace

void FilterSub(std::span<const std::uint8_t> row, std::size_t step, std::uint8_t* out) {
    const std::size_t first = std::min(step, row.size());
    std::copy_n(row.begin(), first, out);
    for (std::size_t i = first; i < row.size(); ++i)
        out[i] = static_cast<std::uint8_t>(row[i] - row[i - step]);
}

bool Unfilter(std::uint8_t filter, std::span<const std::uint8_t> row, std::span<const std::uint8_t> above,
              std::size_t step, std::uint8_t* out) {
    const auto kind = static_cast<PngFilter>(filter);
    if (step == 1)
        return UndoFilter<1>(kind, row, above, out);
    if (step == 3)
        return UndoFilter<3>(kind, row, above, out);
    return UndoFilter<4>(kind, row, above, out);
}
