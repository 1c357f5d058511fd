#pragma once

#include "component/Bitmap.h"
#include "component/render/TileLoader.h"
#include "component/render/ViewAxis.h"
#include "component/render/ViewRequest.h"

#include <memory>

/// Pixels of a level along one axis, both ends included.
struct LevelSpan {
    std::int32_t first = 0;
    std::int32_t last = 0;
};

/// Makes one view's screen pixels from the tiles of one level. Several threads may paint different rows at
/// the same time.
class ViewPainter {
public:
    virtual ~ViewPainter() = default;

    int Level() const { return level_; }
    ScreenRange Columns() const { return columns_; }
    ScreenRange Rows() const { return rows_; }

    /// The level's columns that the view needs, and the rows that one screen row needs.
    virtual LevelSpan LevelColumns() const = 0;
    virtual LevelSpan LevelRows(std::int32_t screenRow) const = 0;

    /// Paints the screen rows inside Columns(); the block holds every tile that they need.
    virtual void Paint(const TileBlock& block, ScreenRange screenRows, Bitmap& view) const = 0;

protected:
    ViewPainter(int level, ScreenRange columns, ScreenRange rows)
        : level_(level), columns_(columns), rows_(rows) {}

private:
    int level_;
    ScreenRange columns_;
    ScreenRange rows_;
};

/// The painter for a request: from zoom 1 upwards the pixel that a click hits; below, the mean of the pixels
/// of the level next above the zoom that a screen pixel covers. Neither range may be empty.
std::unique_ptr<ViewPainter> MakePainter(const ViewRequest& request, const PyramidLayout& layout,
                                         ScreenRange columns, ScreenRange rows);

/// The same part from a level above the one that the zoom asks for: fewer tiles, less detail.
std::unique_ptr<ViewPainter> MakeDraftPainter(const ViewRequest& request, const PyramidLayout& layout,
                                              int level, ScreenRange columns, ScreenRange rows);

/// The smallest level that still has at least as many pixels as the screen shows.
int LevelFor(double zoom, const PyramidLayout& layout);

/// One screen pixel from one pixel of the level: `zoom` screen pixels per pixel of the level, at least 1.
std::unique_ptr<ViewPainter> MakeNearestPainter(const ViewRequest& request, const PyramidLayout& layout,
                                                int level, double zoom, ScreenRange columns,
                                                ScreenRange rows);

/// One screen pixel from `step` by `step` pixels of the level, `step` up to 2.
std::unique_ptr<ViewPainter> MakeSmoothPainter(const ViewRequest& request, const PyramidLayout& layout,
                                               int level, double step, ScreenRange columns, ScreenRange rows);

/// The same for any larger step: the smallest level made smaller still.
std::unique_ptr<ViewPainter> MakeCoarsePainter(const ViewRequest& request, const PyramidLayout& layout,
                                               int level, double step, ScreenRange columns, ScreenRange rows);
