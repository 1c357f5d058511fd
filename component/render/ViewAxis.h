#pragma once

#include <array>
#include <cstdint>
#include <vector>

// One axis of a view: which screen pixels show the map, and from which map pixels they are made. A screen
// pixel's position is its number in the view plus the view's offset, in zoomed pixels from the map's edge. A
// map of n pixels shows at the positions 0 <= p < n · zoom.

/// Screen pixels of a view, from `first` up to but without `end`.
struct ScreenRange {
    std::int32_t first = 0;
    std::int32_t end = 0;

    std::int32_t Count() const { return end - first; }
    bool operator==(const ScreenRange&) const = default;
};

/// The part of a view of `size` pixels that shows the map; empty at `first` = `end` where none does.
ScreenRange ShownRange(std::int32_t offset, std::int32_t size, std::int32_t mapSize, double zoom);

/// The map pixel under every screen pixel of the range, by the rule for a click: position over zoom, rounded
/// half to even, or half up where asked. Positions that round to just beyond the last pixel show the last
/// one, so that the drawn map is as large as its size times the zoom.
std::vector<std::int32_t> PixelsUnder(ScreenRange range, std::int32_t offset, std::int32_t mapSize,
                                      double zoom, bool tiesUp = false);

/// Up to three neighbouring pixels and their weights, which add up to 256.
struct Taps {
    std::int32_t first = 0;
    std::array<std::uint16_t, 3> weights{};
};

/// One axis of a level under a view.
struct LevelAxis {
    LevelAxis(int level, std::int32_t levelSize, double levelStep);

    std::int32_t size; ///< pixels of the level
    double step;       ///< pixels of the level for each screen pixel
    double half;       ///< half a pixel of the map, in pixels of the level
};

/// From where to where a screen pixel reaches on a level, cut to the level. Pixel i of the level reaches from
/// i to i + 1.
struct Coverage {
    double from = 0;
    double to = 0;
};

/// Position p covers half a screen pixel to each side of the middle of the map pixel that a click hits there,
/// so that a click means what is seen. The middle of map pixel p / zoom lies `half` behind its beginning.
Coverage CoverageOf(std::int64_t position, const LevelAxis& axis);

/// For every screen pixel of the range the pixels of a level that it covers, weighted by how much of each it
/// covers. The step is at most 2.
std::vector<Taps> CoveredPixels(ScreenRange range, std::int32_t offset, const LevelAxis& axis);

/// Neighbouring screen pixels whose map pixels lie in one column of tiles.
struct TileRun {
    std::int32_t tile = 0;  ///< column of tiles
    std::int32_t first = 0; ///< place in the range, from 0
    std::int32_t end = 0;
};
std::vector<TileRun> RunsOf(const std::vector<std::int32_t>& pixels, std::int32_t tileSide);
