#pragma once

#include "view/KarvelViewer.h"
#include "view/clsBitmapView.h"

#include <QImage>
#include <QScrollBar>
#include <QWidget>

#include <cstdint>

/// A window as the editor lays it out: a viewer with scroll bars at its edges, a view on all three, and bars
/// that report to it. The viewer begins at an odd position, so at ratio 1.5 inside a device pixel.
class ViewWindow {
public:
    explicit ViewWindow(const QSize& viewerSize = {161, 121});

    void ResizeViewer(const QSize& size);

    /// What the window shows in the viewer's place, by the screen's own pixels.
    QImage Screen();
    QRgb PixelOnScreen(const QPoint& devicePixel);

    /// Sends a mouse event for the middle of a device pixel.
    void SendMouse(QEvent::Type type, const QPoint& devicePixel, Qt::MouseButton button = Qt::NoButton,
                   Qt::MouseButtons buttons = Qt::NoButton, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void SendWheel(const QPoint& devicePixel, const QPoint& angle,
                   Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    double Ratio() const { return viewer.devicePixelRatioF(); }
    /// The device pixel at which the viewer begins, and its size: worked out from the layout alone.
    QRect Place() const;

    QWidget window;
    KarvelViewer viewer{&window};
    QScrollBar horizontal{Qt::Horizontal, &window};
    QScrollBar vertical{Qt::Vertical, &window};
    clsBitmapView view;
};
