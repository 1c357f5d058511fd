#include "wizard/WizardPicture.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {

constexpr int Lines = 4; ///< lines each way, the sheet's edges included

/// A place on the drawn sheet: `across` from its left meridian (0) to its right one (1), `down` likewise.
class PolarSheet {
public:
    explicit PolarSheet(const QRectF& frame)
        : apex_(frame.center().x(), frame.top() - 0.9 * frame.height()), outer_(frame.bottom() - apex_.y()),
          inner_(outer_ - 0.86 * frame.height()),
          halfAngle_(std::asin(std::min(0.9, 0.5 * frame.width() / outer_))) {}

    QPointF At(double across, double down) const {
        const double angle = (2 * across - 1) * halfAngle_;
        const double radius = inner_ + (outer_ - inner_) * down;
        return apex_ + radius * QPointF(std::sin(angle), std::cos(angle));
    }

    QPainterPath Parallel(double down) const {
        constexpr int pieces = 24;
        QPainterPath path(At(0, down));
        for (int piece = 1; piece <= pieces; ++piece)
            path.lineTo(At(static_cast<double>(piece) / pieces, down));
        return path;
    }

private:
    QPointF apex_;
    double outer_;
    double inner_;
    double halfAngle_;
};

double Fraction(int line) {
    return static_cast<double>(line) / (Lines - 1);
}

void DrawLinear(QPainter& painter, const QRectF& frame) {
    for (int line = 0; line < Lines; ++line) {
        const double x = frame.left() + Fraction(line) * frame.width();
        const double y = frame.top() + Fraction(line) * frame.height();
        painter.drawLine(QPointF(x, frame.top()), QPointF(x, frame.bottom()));
        painter.drawLine(QPointF(frame.left(), y), QPointF(frame.right(), y));
    }
}

void DrawPolar(QPainter& painter, const QRectF& frame) {
    const PolarSheet sheet(frame);
    for (int line = 0; line < Lines; ++line) {
        painter.drawLine(sheet.At(Fraction(line), 0), sheet.At(Fraction(line), 1));
        painter.drawPath(sheet.Parallel(Fraction(line)));
    }
}

void PointOut(QPainter& painter, const QPointF& place, const QPalette& palette) {
    constexpr double radius = 7;
    painter.setPen(QPen(palette.color(QPalette::Highlight), 2.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(place, radius, radius);
    painter.drawLine(place - QPointF(radius + 4, 0), place + QPointF(radius + 4, 0));
    painter.drawLine(place - QPointF(0, radius + 4), place + QPointF(0, radius + 4));
}

} // namespace

void WizardPicture::Show(Subject subject) {
    subject_ = subject;
    update();
}

void WizardPicture::paintEvent(QPaintEvent*) {
    constexpr double margin = 16;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);

    const QRectF frame = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
    painter.setPen(QPen(palette().color(QPalette::Text), 1.5));
    painter.setBrush(Qt::NoBrush);
    if (subject_ == Subject::Linear) {
        DrawLinear(painter, frame);
        return;
    }
    DrawPolar(painter, frame);
    if (subject_ == Subject::Polar)
        return;
    const bool right = subject_ == Subject::UpperRight || subject_ == Subject::LowerRight;
    const bool lower = subject_ == Subject::LowerLeft || subject_ == Subject::LowerRight;
    PointOut(painter, PolarSheet(frame).At(right ? 1 : 0, lower ? 1 : 0), palette());
}

void WizardPicture::mousePressEvent(QMouseEvent* event) {
    event->setAccepted(event->button() == Qt::LeftButton);
}

void WizardPicture::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        Q_EMIT Clicked();
}
