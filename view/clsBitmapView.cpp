#include "view/clsBitmapView.h"

#include "base/CheckedNumbers.h"
#include "view/KarvelViewer.h"
#include "view/ZoomSlider.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

/// What is shown along one axis: the zoomed size where the viewer is larger, which is never stretched. At
/// least one pixel, or a small map at a small zoom would vanish.
std::int32_t VisibleLength(std::int32_t imageSize, double zoom, std::int32_t viewerSize) {
    const double zoomed = std::max(1.0, RoundHalfEven(imageSize * zoom));
    return zoomed < viewerSize ? CheckedRound<std::int32_t>(zoomed) : viewerSize;
}

/// The image pixel at a position in zoomed pixels; nothing where the image does not show.
std::optional<std::int32_t> PixelUnder(std::int32_t position, std::int32_t imageSize, double zoom) {
    if (position < 0 || position >= imageSize * zoom)
        return std::nullopt;
    return CheckedRound<std::int32_t>(std::min<double>(RoundHalfEven(position / zoom), imageSize - 1));
}

/// Milliseconds until a draft is asked for again whose map failed or could not read its tiles: nothing says
/// that it will do better at once, and a window that asks without end has no time for anything else.
constexpr int PauseAfterFailure = 1000;

int NearestInteger(double value) {
    return static_cast<int>(std::clamp<double>(RoundHalfEven(value), std::numeric_limits<int>::min(),
                                               std::numeric_limits<int>::max()));
}

} // namespace

clsBitmapView::clsBitmapView() {
    draft_.setSingleShot(true);
    QObject::connect(&draft_, &QTimer::timeout, &draft_, [this] {
        if (map_ && viewer_ != nullptr && !busy_)
            ShowMapPart();
    });
}

clsBitmapView::~clsBitmapView() {
    QObject::disconnect(resized_);
}

void clsBitmapView::SetViewer(KarvelViewer* viewer) {
    QObject::disconnect(resized_);
    viewer_ = viewer;
    zoom_ = 1.0;
    if (viewer_ != nullptr)
        resized_ = QObject::connect(viewer_, &KarvelViewer::Resized, viewer_, [this] { AdjustSize(); });
}

void clsBitmapView::SetScrollBars(QScrollBar* horizontal, QScrollBar* vertical) {
    horizontal_.SetBar(horizontal);
    vertical_.SetBar(vertical);
}

std::int32_t clsBitmapView::MapWidth() const {
    return mapWidth_ != 0 ? mapWidth_ : objBitmap_ ? objBitmap_->Width() : 0;
}

std::int32_t clsBitmapView::MapHeight() const {
    return mapHeight_ != 0 ? mapHeight_ : objBitmap_ ? objBitmap_->Height() : 0;
}

void clsBitmapView::SetMap(std::shared_ptr<AtlavexMap> map) {
    const double zoom = map ? map->Zoom() : zoom_;
    KeepPlace();
    map_ = std::move(map);
    arrival_ = places_.Of(map_);
    zoom_ = zoom;
    // The map renders what the bars select; the viewer shows its answer from the first pixel on.
    if (viewer_ != nullptr) {
        viewer_->SetHorizontalPosition(0);
        viewer_->SetVerticalPosition(0);
    }
    // The map may have been shown before, and another image since.
    if (map_)
        map_->ForgetView();
    SetObjBitmap(map_);
}

void clsBitmapView::SetObjBitmap(std::shared_ptr<const AtlavexImage> image) {
    objBitmap_ = std::move(image);
    if (viewer_ != nullptr)
        viewer_->ShowImage(objBitmap_);
}

void clsBitmapView::KeepPlace() {
    if (map_)
        places_.Keep(map_, arrival_.value_or(QPointF(HorizontalOffset(), VerticalOffset()) / zoom_));
}

QPointF clsBitmapView::PlaceAt(const QPointF& viewerPosition) const {
    return (viewerPosition + QPointF(horizontal_.ExactOffset(), vertical_.ExactOffset())) / zoom_;
}

void clsBitmapView::BringTo(const QPointF& place, const QPointF& viewerPosition) {
    horizontal_.MoveTo(place.x() * zoom_ - viewerPosition.x());
    vertical_.MoveTo(place.y() * zoom_ - viewerPosition.y());
}

void clsBitmapView::ApplyZoom(std::int32_t sliderPosition) {
    const double zoom = ZoomAtSliderPosition(sliderPosition);
    if (map_)
        map_->SetZoom(zoom);
    zoom_ = zoom;
}

void clsBitmapView::SetZoom(std::int32_t sliderPosition) {
    if (busy_)
        return;
    const auto middle = [this] {
        const QSizeF part = ImagePartSize();
        return QPointF(part.width(), part.height()) / 2;
    };
    const QPointF place = PlaceAt(middle());
    ApplyZoom(sliderPosition);
    LayOutAxes();
    BringTo(place, middle());
    ShowVisiblePart();
}

void clsBitmapView::ZoomAbout(std::int32_t sliderPosition, const QPoint& viewerPosition) {
    if (busy_)
        return;
    const QPointF place = PlaceAt(viewerPosition);
    ApplyZoom(sliderPosition);
    LayOutAxes();
    BringTo(place, viewerPosition);
    ShowVisiblePart();
}

std::int32_t clsBitmapView::HighestSliderPosition() const {
    const QSize viewer = ViewerSize();
    const auto canBeReached = [&](double zoom) {
        return ZoomedLength(ImageWidth(), zoom) - viewer.width() <= ScrollAxis::LargestOverhang &&
               ZoomedLength(ImageHeight(), zoom) - viewer.height() <= ScrollAxis::LargestOverhang;
    };
    std::int32_t position = TopSliderPosition;
    while (position > LowestSliderPosition && !canBeReached(ZoomAtSliderPosition(position)))
        --position;
    return position;
}

std::int32_t clsBitmapView::FitPosition() const {
    const QSize viewer = ViewerSize();
    const auto fits = [&](double zoom) {
        return ZoomedLength(ImageWidth(), zoom) <= viewer.width() &&
               ZoomedLength(ImageHeight(), zoom) <= viewer.height();
    };
    std::int32_t position = TopSliderPosition;
    while (position > LowestSliderPosition && !fits(ZoomAtSliderPosition(position)))
        --position;
    return position;
}

void clsBitmapView::Clear() {
    KeepPlace();
    map_.reset();
    arrival_.reset();
    SetObjBitmap(nullptr);
    LayOutAxes();
    ShowVisiblePart();
}

void clsBitmapView::SetBusy(bool busy) {
    if (std::exchange(busy_, busy) && !busy)
        AdjustSize();
}

std::optional<ImagePixel> clsBitmapView::PixelAt(const QPoint& viewerPosition) const {
    const auto x =
        PixelUnder(CheckedAdd<std::int32_t>(viewerPosition.x(), HorizontalOffset()), ImageWidth(), zoom_);
    const auto y =
        PixelUnder(CheckedAdd<std::int32_t>(viewerPosition.y(), VerticalOffset()), ImageHeight(), zoom_);
    if (!x || !y)
        return std::nullopt;
    return ImagePixel{*x, *y};
}

QPoint clsBitmapView::MiddleOfImagePart() const {
    const QSize part = ImagePartSize();
    return {part.width() / 2, part.height() / 2};
}

QPoint clsBitmapView::ViewerPosition(double imageX, double imageY) const {
    return {NearestInteger(imageX * zoom_ - HorizontalOffset()),
            NearestInteger(imageY * zoom_ - VerticalOffset())};
}

// What shows a part of the image. -----------------------------------------------------------------------

/// The layout's own idea of the size: once a map has rendered, the shown image is no larger than the viewer.
std::int32_t clsBitmapView::ImageWidth() const {
    return !objBitmap_ ? 0 : map_ && mapWidth_ == 0 ? map_->Width() : MapWidth();
}

std::int32_t clsBitmapView::ImageHeight() const {
    return !objBitmap_ ? 0 : map_ && mapHeight_ == 0 ? map_->Height() : MapHeight();
}

QSize clsBitmapView::ViewerSize() const {
    return viewer_ != nullptr ? QSize(viewer_->PixelWidth(), viewer_->PixelHeight()) : QSize(0, 0);
}

/// What the viewer shows of the image at its zoom.
QSize clsBitmapView::ImagePartSize() const {
    const QSize viewer = ViewerSize();
    return {VisibleLength(ImageWidth(), zoom_, viewer.width()),
            VisibleLength(ImageHeight(), zoom_, viewer.height())};
}

void clsBitmapView::LayOutAxes() {
    const QSize viewer = ViewerSize();
    horizontal_.LayOut(ImageWidth(), zoom_, viewer.width());
    vertical_.LayOut(ImageHeight(), zoom_, viewer.height());
}

void clsBitmapView::AdjustSize() {
    if (busy_)
        return;
    LayOutAxes();
    if (const auto place = std::exchange(arrival_, std::nullopt))
        BringTo(*place, {0, 0});
    ShowVisiblePart();
}

void clsBitmapView::ChangeVScroll() {
    ShowVisiblePart();
}

void clsBitmapView::ChangeHScroll() {
    ShowVisiblePart();
}

void clsBitmapView::ScrollBy(const QPoint& devicePixels) {
    horizontal_.MoveBy(devicePixels.x());
    vertical_.MoveBy(devicePixels.y());
    ShowVisiblePart();
}

void clsBitmapView::CenterOn(double imageX, double imageY) {
    const QSize viewer = ViewerSize();
    BringTo({imageX, imageY}, QPointF(viewer.width(), viewer.height()) / 2);
    ShowVisiblePart();
}

void clsBitmapView::ShowVisiblePart() {
    if (busy_ || viewer_ == nullptr)
        return;
    if (map_) {
        ShowMapPart();
    } else {
        viewer_->SetHorizontalPosition(HorizontalOffset());
        viewer_->SetVerticalPosition(VerticalOffset());
    }
    if (OnViewChanged)
        OnViewChanged();
}

void clsBitmapView::ShowMapPart() {
    if (ViewerSize().isEmpty())
        return;
    const QSize visible = ImagePartSize();
    std::shared_ptr<const AtlavexImage> image;
    int pause = 0;
    try {
        if (map_->RenderView(HorizontalOffset(), VerticalOffset(), visible.width(), visible.height(), image))
            SetObjBitmap(std::move(image));
    } catch (const ComponentError&) {
        // The map is gone or there is no memory: what the viewer has is better than nothing.
        pause = PauseAfterFailure;
    }
    if (map_->ViewIsObstructed())
        pause = PauseAfterFailure;
    if (map_->ViewIsDraft())
        draft_.start(pause);
}
