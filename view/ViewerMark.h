#pragma once

#include <QPoint>
#include <QString>

#include <vector>

class QPainter;
class QPalette;

enum class ViewerMarkStyle {
    ReferencePoint, ///< a ring with a cross in it: a point that was entered
    FormerPoint,    ///< a ring of dashes: a point of an earlier scaling
    Crosshair       ///< a cross with an open middle: the point that is being entered
};

/// A sign that stands over the image and is no part of it.
struct ViewerMark {
    QPoint position; ///< device pixel in the viewer that the mark is centred on
    ViewerMarkStyle style = ViewerMarkStyle::ReferencePoint;
    QString text; ///< shown beside the mark, as plain text; may be empty

    bool operator==(const ViewerMark&) const = default;
};

/// Draws the marks with a painter that counts device pixels. Each line lies on a broader one of the palette's
/// opposite colour, so that it is seen on a light map and on a dark one. `ratio` is the device pixel ratio.
void PaintMarks(QPainter& painter, const std::vector<ViewerMark>& marks, const QPalette& palette,
                double ratio);
