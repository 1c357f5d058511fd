#include "component/render/ViewAxis.h"

#include "base/CheckedNumbers.h"

#include <algorithm>
#include <cmath>

namespace {

double Nearest(double value, bool tiesUp) {
    if (!tiesUp)
        return RoundHalfEven(value);
    const double below = std::floor(value);
    return value - below < 0.5 ? below : below + 1;
}

} // namespace

ScreenRange ShownRange(std::int32_t offset, std::int32_t size, std::int32_t mapSize, double zoom) {
    const std::int64_t begin = std::clamp<std::int64_t>(-std::int64_t{offset}, 0, size);
    // Compared as a double: at a large zoom the product is far beyond every integer.
    const double beyond = std::ceil(static_cast<double>(mapSize) * zoom) - static_cast<double>(offset);
    const double end = std::clamp(beyond, static_cast<double>(begin), static_cast<double>(size));
    return {static_cast<std::int32_t>(begin), static_cast<std::int32_t>(end)};
}

std::vector<std::int32_t> PixelsUnder(ScreenRange range, std::int32_t offset, std::int32_t mapSize,
                                      double zoom, bool tiesUp) {
    std::vector<std::int32_t> pixels(static_cast<std::size_t>(range.Count()));
    double position = static_cast<double>(offset) + range.first;
    const double last = mapSize - 1;
    for (std::int32_t& pixel : pixels) {
        pixel = static_cast<std::int32_t>(std::min(Nearest(position / zoom, tiesUp), last));
        position += 1;
    }
    return pixels;
}

LevelAxis::LevelAxis(int level, std::int32_t levelSize, double levelStep)
    : size(levelSize), step(levelStep), half(std::ldexp(0.5, -level)) {}

Coverage CoverageOf(std::int64_t position, const LevelAxis& axis) {
    const double size = axis.size, at = static_cast<double>(position);
    // From a step of twice the level on the first position covers all of it; an infinite one (of the smallest
    // zooms) times 0 is no number.
    const double step = std::min(axis.step, 2 * size);
    return {std::clamp((at - 0.5) * step + axis.half, 0.0, size),
            std::clamp((at + 0.5) * step + axis.half, 0.0, size)};
}

std::vector<Taps> CoveredPixels(ScreenRange range, std::int32_t offset, const LevelAxis& axis) {
    std::vector<Taps> taps(static_cast<std::size_t>(range.Count()));
    std::int64_t position = std::int64_t{offset} + range.first;
    for (Taps& tap : taps) {
        const Coverage covered = CoverageOf(position++, axis);
        // Rounding may put the last position's start on the very end of the level.
        tap.first = std::min(static_cast<std::int32_t>(covered.from), axis.size - 1);
        const double length = covered.to - covered.from;
        long given = 0;
        for (std::size_t i = 0; i < tap.weights.size(); ++i) {
            const double reached = tap.first + static_cast<double>(i) + 1 - covered.from;
            const double part = length > 0 && i < 2 ? std::clamp(reached / length, 0.0, 1.0) : 1.0;
            // Rounding the running sum keeps the sum of the weights exact.
            const long sum = std::lround(256 * part);
            tap.weights[i] = static_cast<std::uint16_t>(sum - given);
            given = sum;
        }
    }
    return taps;
}

std::vector<TileRun> RunsOf(const std::vector<std::int32_t>& pixels, std::int32_t tileSide) {
    std::vector<TileRun> runs;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const std::int32_t tile = pixels[i] / tileSide;
        if (runs.empty() || runs.back().tile != tile)
            runs.push_back({tile, static_cast<std::int32_t>(i), 0});
        runs.back().end = static_cast<std::int32_t>(i) + 1;
    }
    return runs;
}
