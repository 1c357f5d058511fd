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
          columns_(level, layout.Level(level).width, step), rows_(level, layout.Level(level).height, step) {}

    LevelSpan LevelColumns() const override {
        return {SpanOf(ColumnCoverage(Columns().first), columns_.size).first,
                SpanOf(ColumnCoverage(Columns().end - 1), columns_.size).last};
    }
    LevelSpan LevelRows(std::int32_t screenRow) const override {
        return SpanOf(RowCoverage(screenRow), rows_.size);
    }

    void Paint(const TileBlock& block, ScreenRange screenRows, Bitmap& view) const override {
        for (std::int32_t row = screenRows.first; row < screenRows.end; ++row)
            for (std::int32_t column = Columns().first; column < Columns().end; ++column)
                view.Row(row)[column] = MeanOf(block, ColumnCoverage(column), RowCoverage(row));
    }

private:
    Coverage ColumnCoverage(std::int32_t column) const {
        return CoverageOf(std::int64_t{left_} + column, columns_);
    }
    Coverage RowCoverage(std::int32_t row) const { return CoverageOf(std::int64_t{top_} + row, rows_); }

    std::uint32_t MeanOf(const TileBlock& block, const Coverage& across, const Coverage& down) const {
        const LevelSpan columns = SpanOf(across, columns_.size), rows = SpanOf(down, rows_.size);
        ChannelSums sums;
        for (std::int32_t y = rows.first; y <= rows.last; ++y)
            for (std::int32_t x = columns.first; x <= columns.last; ++x)
                sums.Add(block.Row(y, x / block.tileWidth)[x % block.tileWidth],
                         Overlap(across, x) * Overlap(down, y));
        return sums.Mean();
    }

    std::int32_t left_, top_;
    LevelAxis columns_, rows_;
};

} // namespace

std::unique_ptr<ViewPainter> MakeCoarsePainter(const ViewRequest& request, const PyramidLayout& layout,
                                               int level, double step, ScreenRange columns,
                                               ScreenRange rows) {
    return std::make_unique<CoarsePainter>(request, layout, level, step, columns, rows);
}
