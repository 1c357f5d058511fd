#include "view/ViewerMark.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace {

// In units of the device pixel ratio.
constexpr double RingRadius = 7;
constexpr double CrossReach = 12;
constexpr double CrossGap = 3;
constexpr double LineWidth = 1.5;
constexpr double HaloWidth = 4;
constexpr double TextDistance = 10;
constexpr double TextMargin = 2;

QPainterPath Cross(double from, double to) {
    QPainterPath path;
    for (const QPointF& way : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)}) {
        path.moveTo(way * from);
        path.lineTo(way * to);
    }
    return path;
}

QPainterPath Outline(ViewerMarkStyle style) {
    if (style == ViewerMarkStyle::Crosshair)
        return Cross(CrossGap, CrossReach);
    QPainterPath path;
    path.addEllipse(QPointF(0, 0), RingRadius, RingRadius);
    if (style == ViewerMarkStyle::ReferencePoint)
        path.addPath(Cross(0, RingRadius));
    return path;
}

void PaintText(QPainter& painter, const QString& text, const QPalette& palette) {
    const QFontMetricsF metrics(painter.font());
    QRectF tag = metrics.boundingRect(text).adjusted(-TextMargin, -TextMargin, TextMargin, TextMargin);
    tag.moveBottomLeft(QPointF(TextDistance, -TextDistance / 2));
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.base());
    painter.drawRoundedRect(tag, TextMargin, TextMargin);
    painter.setPen(palette.color(QPalette::Text));
    painter.drawText(tag, Qt::AlignCenter | Qt::TextSingleLine, text);
}

void PaintMark(QPainter& painter, const ViewerMark& mark, const QPalette& palette) {
    const QPainterPath outline = Outline(mark.style);
    QPen line(palette.color(QPalette::Text), LineWidth);
    if (mark.style == ViewerMarkStyle::FormerPoint)
        line.setStyle(Qt::DotLine);
    painter.setBrush(Qt::NoBrush);
    painter.strokePath(outline, QPen(palette.color(QPalette::Base), HaloWidth));
    painter.strokePath(outline, line);
    if (!mark.text.isEmpty())
        PaintText(painter, mark.text, palette);
}

} // namespace

void PaintMarks(QPainter& painter, const std::vector<ViewerMark>& marks, const QPalette& palette,
                double ratio) {
    painter.setRenderHint(QPainter::Antialiasing);
    for (const ViewerMark& mark : marks) {
        painter.save();
        painter.translate(QPointF(mark.position) + QPointF(0.5, 0.5));
        painter.scale(ratio, ratio);
        PaintMark(painter, mark, palette);
        painter.restore();
    }
}
