#pragma once

#include "component/AtlavexImage.h"
#include "view/ViewerMark.h"
#include "view/WheelTurns.h"

#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

/// Shows an image, one of its pixels on one pixel of the device, and reports what the mouse does. All
/// positions and sizes are device pixels, counted from the viewer's upper left one.
///
/// The image stands at the upper left. Where it ends, and where it is transparent, the palette's colour of
/// the viewer's backgroundRole() is seen. Painting uses the image given last and asks nobody for anything.
class KarvelViewer : public QWidget {
    Q_OBJECT
public:
    explicit KarvelViewer(QWidget* parent = nullptr);

    /// Nothing, or an image without pixels at hand, clears the viewer.
    void ShowImage(std::shared_ptr<const AtlavexImage> image);
    const std::shared_ptr<const AtlavexImage>& Image() const { return image_; }

    /// The image's pixel at the viewer's upper left.
    std::int32_t HorizontalPosition() const { return horizontalPosition_; }
    std::int32_t VerticalPosition() const { return verticalPosition_; }
    void SetHorizontalPosition(std::int32_t pixels);
    void SetVerticalPosition(std::int32_t pixels);

    std::int32_t PixelWidth() const;
    std::int32_t PixelHeight() const;

    /// The device pixel under the pointer, as far as the pointer's own events tell; nothing while the pointer
    /// is elsewhere.
    std::optional<QPoint> PointerPosition() const;

    /// Signs drawn over the image. They stay where they are when the image moves: their owner places them.
    void SetMarks(std::vector<ViewerMark> marks);
    const std::vector<ViewerMark>& Marks() const { return marks_; }

    /// The pointer over the viewer while nothing is dragged; an arrow at first.
    void SetPointer(Qt::CursorShape shape);
    /// What assistive programs read out of the viewer, for those who do not see the image and the pointer.
    void SetValueText(const QString& text);
    const QString& ValueText() const { return valueText_; }

    QSize sizeHint() const override;

Q_SIGNALS:
    void MouseMoved(QPoint devicePixel, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);
    void PointerLeft();
    /// The left button was pressed and released inside the viewer, and nothing was dragged with it.
    void Clicked(QPoint devicePixel);
    /// The picture was dragged so far, with the middle button or with Space and the left one.
    void Panned(QPoint deltaDevicePixels);
    /// The wheel was turned with Ctrl held; positive is away from the user.
    void ZoomTurned(int steps, QPoint devicePixel);
    /// The wheel or a touchpad moves the picture so far: positive is to the right and down.
    void Turned(QPoint deltaDevicePixels);
    /// The size in device pixels has changed, be it by another screen.
    void Resized();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    struct Drag {
        Qt::MouseButton button = Qt::NoButton;
        QPoint last;
    };

    QSize PixelSize() const;
    void ReportSize();
    void SetSpaceHeld(bool held);
    void ForgetButtons();
    void ShowPointer();

    std::shared_ptr<const AtlavexImage> image_;
    std::int32_t horizontalPosition_ = 0;
    std::int32_t verticalPosition_ = 0;
    std::vector<ViewerMark> marks_;
    QString valueText_;
    QSize reportedSize_;
    WheelTurns wheel_;
    std::optional<QPointF> pointer_; ///< in the widget's own units
    std::optional<Drag> drag_;
    Qt::CursorShape pointerShape_ = Qt::ArrowCursor;
    bool leftPressed_ = false;
    bool spaceHeld_ = false;
};
