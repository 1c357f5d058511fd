#include "component/render/ViewPainter.h"

#include <algorithm>

namespace {

class NearestPainter : public ViewPainter {
public:
    NearestPainter(const ViewRequest& request, const PyramidLayout& layout, int level, double zoom,
                   ScreenRange columns, ScreenRange rows)
        : ViewPainter(level, columns, rows), copies_(zoom == 1),
          pixelColumns_(PixelsUnder(columns, request.left, layout.Level(level).width, zoom, request.tiesUp)),
          pixelRows_(PixelsUnder(rows, request.top, layout.Level(level).height, zoom, request.tiesUp)),
          runs_(RunsOf(pixelColumns_, layout.TileWidth())), inTile_(pixelColumns_) {
        for (std::int32_t& column : inTile_)
            column %= layout.TileWidth();
    }

    LevelSpan LevelColumns() const override { return {pixelColumns_.front(), pixelColumns_.back()}; }
    LevelSpan LevelRows(std::int32_t screenRow) const override {
        const std::int32_t row = PixelRow(screenRow);
        return {row, row};
    }

    void Paint(const TileBlock& block, ScreenRange screenRows, Bitmap& view) const override {
        for (std::int32_t row = screenRows.first; row < screenRows.end; ++row) {
            std::uint32_t* to = view.Row(row) + Columns().first;
            if (row > screenRows.first && PixelRow(row) == PixelRow(row - 1))
                std::copy_n(view.Row(row - 1) + Columns().first, Columns().Count(), to);
            else
                PaintRow(block, PixelRow(row), to);
        }
    }

private:
    std::int32_t PixelRow(std::int32_t screenRow) const {
        return pixelRows_[static_cast<std::size_t>(screenRow - Rows().first)];
    }

    void PaintRow(const TileBlock& block, std::int32_t row, std::uint32_t* to) const {
        for (const TileRun& run : runs_) {
            const std::uint32_t* from = block.Row(row, run.tile);
            const std::int32_t* column = inTile_.data();
            if (copies_)
                std::copy_n(from + column[run.first], run.end - run.first, to + run.first);
            else
                for (std::int32_t i = run.first; i < run.end; ++i)
                    to[i] = from[column[i]];
        }
    }

    bool copies_;
    std::vector<std::int32_t> pixelColumns_; ///< for each screen column
    std::vector<std::int32_t> pixelRows_;
    std::vector<TileRun> runs_;
    std::vector<std::int32_t> inTile_; ///< the pixel columns, counted inside their tile
};

} // namespace

std::unique_ptr<ViewPainter> MakeNearestPainter(const ViewRequest& request, const PyramidLayout& layout,
                                                int level, double zoom, ScreenRange columns,
                                                ScreenRange rows) {
    return std::make_unique<NearestPainter>(request, layout, level, zoom, columns, rows);
}
