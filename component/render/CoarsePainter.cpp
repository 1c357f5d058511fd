#include "component/render/ViewPainter.h"

#include <algorithm>
#include <cmath>

namespace {

/// Pixels of the level that reach into the coverage.
LevelSpan SpanOf(const Coverage& covered, std::int32_t levelSize) {
    const auto first = std::min(static_cast<std::int32_t>(covered.from), levelSize - 1);
    const auto last = static_cast<std::int32_t>(std::ceil(covered.to)) - 1;
    return {first, std::max(first, last)};
}

/// How much of the pixel is covered.
double Overlap(const Coverage& covered, std::int32_t pixel) {
    const double from = pixel;
    return std::max(0.0, std::min(covered.to, from + 1) - std::max(covered.from, from));
}

/// Sums of the channels of many pixels.
struct ChannelSums {
    std::array<double, 4> sums{};
    double weights = 0;

    void Add(std::uint32_t pixel, double weight) {
        for (std::size_t i = 0; i < sums.size(); ++i)
            sums[i] += weight * ((pixel >> (8 * i)) & 0xFF);
        weights += weight;
    }

    std::uint32_t Mean() const {
        std::uint32_t pixel = 0;
        for (std::size_t i = 0; i < sums.size() && weights > 0; ++i)
            pixel |= static_cast<std::uint32_t>(std::lround(sums[i] / weights)) << (8 * i);
        return pixel;
    }
};

/// Visits each pixel of the level about once: the smallest level is one tile, so this needs no haste.
class CoarsePainter : public ViewPainter {
public:
    CoarsePainter(const ViewRequest& request, const PyramidLayout& layout, int level, double step,
                  ScreenRange columns, ScreenRange rows)
        : ViewPainter(level, columns, rows), left_(request.left), top_(request.top),
          width_(layout.Level(level).width), height_(layout.Level(level).height), step_(step) {}

    LevelSpan LevelColumns() const override {
        return {SpanOf(ColumnCoverage(Columns().first), width_).first,
                SpanOf(ColumnCoverage(Columns().end - 1), width_).last};
    }
    LevelSpan LevelRows(std::int32_t screenRow) const override {
        return SpanOf(RowCoverage(screenRow), height_);
    }

    void Paint(const TileBlock& block, ScreenRange screenRows, Bitmap& view) const override {
        for (std::int32_t row = screenRows.first; row < screenRows.end; ++row)
            for (std::int32_t column = Columns().first; column < Columns().end; ++column)
                view.Row(row)[column] = MeanOf(block, ColumnCoverage(column), RowCoverage(row));
    }

private:
    Coverage ColumnCoverage(std::int32_t column) const {
        return CoverageOf(std::int64_t{left_} + column, width_, step_);
    }
    Coverage RowCoverage(std::int32_t row) const {
        return CoverageOf(std::int64_t{top_} + row, height_, step_);
    }

    std::uint32_t MeanOf(const TileBlock& block, const Coverage& across, const Coverage& down) const {
        const LevelSpan columns = SpanOf(across, width_), rows = SpanOf(down, height_);
        ChannelSums sums;
        for (std::int32_t y = rows.first; y <= rows.last; ++y)
            for (std::int32_t x = columns.first; x <= columns.last; ++x)
                sums.Add(block.Row(y, x / block.tileWidth)[x % block.tileWidth],
                         Overlap(across, x) * Overlap(down, y));
        return sums.Mean();
    }

    std::int32_t left_, top_;
    std::int32_t width_, height_;
    double step_;
};

} // namespace

std::unique_ptr<ViewPainter> MakeCoarsePainter(const ViewRequest& request, const PyramidLayout& layout,
                                               int level, double step, ScreenRange columns,
                                               ScreenRange rows) {
    return std::make_unique<CoarsePainter>(request, layout, level, step, columns, rows);
}
