#include "view/KarvelViewer.h"

#include "component/Bitmap.h"
#include "view/DevicePixels.h"

#include <QAccessibleWidget>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr QSize UsualSize(640, 480);

/// What a screen reader learns of a viewer: its own text as the value.
class ViewerAccessible : public QAccessibleWidget {
public:
    explicit ViewerAccessible(KarvelViewer* viewer)
        : QAccessibleWidget(viewer, QAccessible::Graphic), viewer_(*viewer) {}

    QString text(QAccessible::Text kind) const override {
        // Some desktops hand on no values that are texts, but every one the description.
        if (kind == QAccessible::Value || kind == QAccessible::Description)
            return viewer_.ValueText();
        return QAccessibleWidget::text(kind);
    }

private:
    const KarvelViewer& viewer_;
};

QAccessibleInterface* MakeAccessible(const QString&, QObject* object) {
    auto* const viewer = qobject_cast<KarvelViewer*>(object);
    // Qt owns what a factory makes.
    return viewer != nullptr ? new ViewerAccessible(viewer) : nullptr;
}

/// The bitmap's pixels without a copy; valid as long as the bitmap.
QImage ImageOf(const Bitmap& bitmap) {
    return {reinterpret_cast<const uchar*>(bitmap.pixels.data()), bitmap.width, bitmap.height,
            qsizetype{4} * bitmap.width, QImage::Format_ARGB32_Premultiplied};
}

/// The part of the bitmap from (left, top) on, at the painter's (0, 0); no larger than `size`.
void PaintBitmap(QPainter& painter, const Bitmap& bitmap, std::int32_t left, std::int32_t top,
                 const QSize& size) {
    if (bitmap.width <= 0 || bitmap.height <= 0)
        return;
    // In 64 bits, because the positions may be any number.
    const auto part = [](std::int32_t position, std::int32_t bitmapSize, int viewerSize) {
        const std::int64_t first = std::clamp<std::int64_t>(position, 0, bitmapSize);
        const std::int64_t end =
            std::clamp<std::int64_t>(std::int64_t{position} + viewerSize, first, bitmapSize);
        return std::pair(static_cast<int>(first), static_cast<int>(end - first));
    };
    const auto [x, width] = part(left, bitmap.width, size.width());
    const auto [y, height] = part(top, bitmap.height, size.height());
    if (width > 0 && height > 0)
        painter.drawImage(QPoint(x - left, y - top), ImageOf(bitmap), QRect(x, y, width, height));
}

} // namespace

KarvelViewer::KarvelViewer(QWidget* parent) : QWidget(parent) {
    QAccessible::installFactory(MakeAccessible);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

void KarvelViewer::ShowImage(std::shared_ptr<const AtlavexImage> image) {
    image_ = std::move(image);
    update();
}

void KarvelViewer::SetHorizontalPosition(std::int32_t pixels) {
    if (std::exchange(horizontalPosition_, pixels) != pixels)
        update();
}

void KarvelViewer::SetVerticalPosition(std::int32_t pixels) {
    if (std::exchange(verticalPosition_, pixels) != pixels)
        update();
}

QSize KarvelViewer::PixelSize() const {
    return DevicePixelsOf(*this).size();
}

std::int32_t KarvelViewer::PixelWidth() const {
    return PixelSize().width();
}

std::int32_t KarvelViewer::PixelHeight() const {
    return PixelSize().height();
}

std::optional<QPoint> KarvelViewer::PointerPosition() const {
    if (!pointer_ || !QRectF(rect()).contains(*pointer_))
        return std::nullopt;
    return DevicePixelAt(*this, *pointer_);
}

void KarvelViewer::SetMarks(std::vector<ViewerMark> marks) {
    if (marks == marks_)
        return;
    marks_ = std::move(marks);
    update();
}

void KarvelViewer::SetValueText(const QString& text) {
    if (text == valueText_)
        return;
    valueText_ = text;
    // Not of the value: Qt expects a number then, and complains of every other at each move of the pointer.
    QAccessibleEvent description(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&description);
}

QSize KarvelViewer::sizeHint() const {
    return UsualSize;
}

void KarvelViewer::paintEvent(QPaintEvent*) {
    // Another screen's device pixel ratio comes without an event of its own, but never without a painting.
    // The answer has to wait: it changes what is being painted.
    if (PixelSize() != reportedSize_)
        QMetaObject::invokeMethod(this, &KarvelViewer::ReportSize, Qt::QueuedConnection);

    QPainter painter(this);
    const double ratio = CountDevicePixels(painter);
    const QSize size = PixelSize();
    // One pixel more on each side covers what rounding may add; what is too much is cut off.
    painter.fillRect(QRect(QPoint(0, 0), size).adjusted(-1, -1, 1, 1), palette().brush(backgroundRole()));
    if (const Bitmap* const bitmap = image_ ? image_->Pixels() : nullptr)
        PaintBitmap(painter, *bitmap, horizontalPosition_, verticalPosition_, size);
    if (!marks_.empty())
        PaintMarks(painter, marks_, palette(), ratio);
}

void KarvelViewer::ReportSize() {
    const QSize size = PixelSize();
    if (std::exchange(reportedSize_, size) != size)
        Q_EMIT Resized();
}

void KarvelViewer::resizeEvent(QResizeEvent*) {
    ReportSize();
}

void KarvelViewer::moveEvent(QMoveEvent*) {
    // Begun inside another device pixel, the viewer may cover one more or one less.
    ReportSize();
}
