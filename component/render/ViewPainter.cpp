#include "component/render/ViewPainter.h"

#include <cmath>

int LevelFor(double zoom, const PyramidLayout& layout) {
    int level = 0;
    while (level + 1 < layout.Levels() && std::ldexp(1.0, -(level + 1)) >= zoom)
        ++level;
    return level;
}

std::unique_ptr<ViewPainter> MakeDraftPainter(const ViewRequest& request, const PyramidLayout& layout,
                                              int level, ScreenRange columns, ScreenRange rows) {
    return MakeSmoothPainter(request, layout, level, 1 / std::ldexp(request.zoom, level), columns, rows);
}

std::unique_ptr<ViewPainter> MakePainter(const ViewRequest& request, const PyramidLayout& layout,
                                         ScreenRange columns, ScreenRange rows) {
    if (request.zoom >= 1)
        return MakeNearestPainter(request, layout, 0, request.zoom, columns, rows);
    const int level = LevelFor(request.zoom, layout);
    const double step = 1 / std::ldexp(request.zoom, level);
    if (step == 1) // as it is: sharper, though up to half a screen pixel aside
        return MakeNearestPainter(request, layout, level, 1, columns, rows);
    if (step <= 2)
        return MakeSmoothPainter(request, layout, level, step, columns, rows);
    return MakeCoarsePainter(request, layout, level, step, columns, rows);
}
