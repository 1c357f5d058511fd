#include "tests/view/ViewWindow.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPixmap>
#include <QTest>
#include <QWheelEvent>

#include <cmath>

namespace {

constexpr QPoint ViewerPlace(7, 5);
constexpr int BarBreadth = 15;

int Nearest(double edge) {
    return static_cast<int>(std::floor(edge + 0.5));
}

} // namespace

ViewWindow::ViewWindow(const QSize& viewerSize) {
    // Strong colours around and behind the viewer: no pixel of a map is taken for one of theirs.
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::magenta);
    window.setPalette(palette);
    ResizeViewer(viewerSize);
    view.SetViewer(&viewer);
    view.SetScrollBars(&horizontal, &vertical);
    QObject::connect(&horizontal, &QScrollBar::valueChanged, &window, [this] { view.ChangeHScroll(); });
    QObject::connect(&vertical, &QScrollBar::valueChanged, &window, [this] { view.ChangeVScroll(); });
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        qFatal("The window never came.");
    viewer.setFocus();
}

void ViewWindow::ResizeViewer(const QSize& size) {
    viewer.setGeometry({ViewerPlace, size});
    const QPoint end = ViewerPlace + QPoint(size.width(), size.height());
    horizontal.setGeometry(ViewerPlace.x(), end.y(), size.width(), BarBreadth);
    vertical.setGeometry(end.x(), ViewerPlace.y(), BarBreadth, size.height());
    window.resize(end.x() + BarBreadth, end.y() + BarBreadth);
}

QRect ViewWindow::Place() const {
    const double ratio = Ratio();
    const QRect place = viewer.geometry();
    const QPoint first(Nearest(place.x() * ratio), Nearest(place.y() * ratio));
    return {first, QSize(Nearest((place.x() + place.width()) * ratio) - first.x(),
                         Nearest((place.y() + place.height()) * ratio) - first.y())};
}

QImage ViewWindow::Screen() {
    QImage image = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
    image.setDevicePixelRatio(1);
    return image.copy(Place());
}

QRgb ViewWindow::PixelOnScreen(const QPoint& devicePixel) {
    return Screen().pixel(devicePixel);
}

void ViewWindow::SendMouse(QEvent::Type type, const QPoint& devicePixel, Qt::MouseButton button,
                           Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers) {
    // The pointer's position comes as the device pixel's upper left corner, divided by the ratio.
    const QPointF inWindow = QPointF(devicePixel + Place().topLeft()) / Ratio();
    const QPointF inViewer = inWindow - viewer.pos();
    QMouseEvent event(type, inViewer, inWindow, viewer.mapToGlobal(inViewer), button, buttons, modifiers);
    QApplication::sendEvent(&viewer, &event);
}

void ViewWindow::SendWheel(const QPoint& devicePixel, const QPoint& angle, Qt::KeyboardModifiers modifiers) {
    const QPointF inViewer = QPointF(devicePixel + Place().topLeft()) / Ratio() - viewer.pos();
    QWheelEvent event(inViewer, viewer.mapToGlobal(inViewer), QPoint(), angle, Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&viewer, &event);
}
