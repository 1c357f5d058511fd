#pragma once

#include "component/AtlavexMap.h"
#include "view/ScrollAxis.h"
#include "view/VisitedPlaces.h"

#include <QMetaObject>
#include <QPoint>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

class KarvelViewer;

/// A pixel of an image, whole and unzoomed; the integer pixel is its centre.
struct ImagePixel {
    std::int32_t x = 0;
    std::int32_t y = 0;
    bool operator==(const ImagePixel&) const = default;
};

/// Ties a viewer and a pair of scroll bars to the map or icon that is shown, keeps the zoom, and turns scroll
/// positions into the part of the image on the screen. Sizes and positions in the viewer are device pixels.
///
/// What scrolls or lays out is called from event handlers, and scrolling and painting stay silent: when the
/// map cannot be rendered (ComponentError), that is caught here and the viewer keeps the image it has. What a
/// command calls (SetZoom, ZoomAbout) and PixelAt throw, before they have changed anything.
/// Where the map answers with a draft, the same part is asked for again whenever there is nothing else to do,
/// until it is final; after a failure there is a pause.
class clsBitmapView {
public:
    clsBitmapView();
    ~clsBitmapView();
    clsBitmapView(const clsBitmapView&) = delete;
    clsBitmapView& operator=(const clsBitmapView&) = delete;

    /// The viewer and the scroll bars must outlive the view, or be gone together with it. From now on the
    /// view lays out anew whenever the viewer's size in device pixels changes.
    void SetViewer(KarvelViewer* viewer); ///< resets the zoom to 1.0
    KarvelViewer* Viewer() const { return viewer_; }
    /// Their owner connects what they report to ChangeHScroll and ChangeVScroll.
    void SetScrollBars(QScrollBar* horizontal, QScrollBar* vertical);

    /// The size set by the owner, in pixels; when that is 0 the shown image's, without an image 0.
    std::int32_t MapWidth() const;
    std::int32_t MapHeight() const;
    void SetMapWidth(std::int32_t pixels) { mapWidth_ = pixels; }
    void SetMapHeight(std::int32_t pixels) { mapHeight_ = pixels; }

    const std::shared_ptr<AtlavexMap>& Map() const { return map_; }
    /// Stores the map, makes it the shown image and takes its zoom. AdjustSize brings its pixels, where it
    /// was looked at when this view last showed it, else from its upper left.
    void SetMap(std::shared_ptr<AtlavexMap> map);
    const std::shared_ptr<const AtlavexImage>& objBitmap() const { return objBitmap_; }
    void SetObjBitmap(std::shared_ptr<const AtlavexImage> image);

    double Zoom() const { return zoom_; }
    /// zoom = e^(slider position / 10), written to the map's zoom; lays out anew. What is in the middle of
    /// the part shown stays there, as far as the image's edges allow. Errors: those of ZoomAtSliderPosition
    /// and of the map.
    void SetZoom(std::int32_t sliderPosition);
    /// The same, where what is under the viewer's pixel stays there as far as the image's edges and coarse
    /// scroll bars allow.
    void ZoomAbout(std::int32_t sliderPosition, const QPoint& viewerPosition);
    /// The upper end of the zoom slider for this image: the highest position up to 20 at which every pixel
    /// can be scrolled to.
    std::int32_t HighestSliderPosition() const;
    /// The highest slider position at which the whole image fits into the viewer; the lowest one where none
    /// does.
    std::int32_t FitPosition() const;

    /// Forgets map and image; the viewer shows nothing. A size set by the owner stays.
    void Clear();
    /// Lays out viewer and scroll bars for the image's size and zoom and sets the scroll ranges; renders
    /// once.
    void AdjustSize();
    /// Show the part that both scroll bars select. A part that the map has rendered last is not shown anew.
    void ChangeVScroll();
    void ChangeHScroll();
    /// Moves the part shown: positive is to the right and down in the image. Less than a scroll bar's unit
    /// adds up. The bars report nothing.
    void ScrollBy(const QPoint& devicePixels);
    /// Brings an image pixel to the viewer's middle as far as the image's edges allow.
    void CenterOn(double imageX, double imageY);

    /// True while a component call is on the stack: the view keeps its last image, asks the component for
    /// nothing, and lays itself out once when the call is over. Zooming waits for the next time.
    void SetBusy(bool busy);
    bool IsBusy() const { return busy_; }

    /// Zoomed pixels from the image's left and upper edge to the viewer's, as the scroll bars stand.
    std::int32_t HorizontalOffset() const { return horizontal_.Offset(); }
    std::int32_t VerticalOffset() const { return vertical_.Offset(); }
    /// Whether one scroll unit stands for 10 zoomed pixels.
    bool HorizontalIsCoarse() const { return horizontal_.IsCoarse(); }
    bool VerticalIsCoarse() const { return vertical_.IsCoarse(); }
    /// The image pixel under a position in the viewer: position plus offset (checked 32-bit sum), divided by
    /// the zoom, rounded half to even, at most the last. Nothing beside the image, which shows at the sums
    /// from 0 up to but without size times zoom. ErrorNumber::Overflow.
    std::optional<ImagePixel> PixelAt(const QPoint& viewerPosition) const;
    /// The viewer's position in the middle of what it shows of the image.
    QPoint MiddleOfImagePart() const;
    /// The reverse of PixelAt: the viewer's pixel at the centre of an image pixel, also where that is outside
    /// the viewer.
    QPoint ViewerPosition(double imageX, double imageY) const;

    /// Called when another part may be shown, or at another zoom: marks have to be placed anew.
    std::function<void()> OnViewChanged;

private:
    std::int32_t ImageWidth() const;
    std::int32_t ImageHeight() const;
    QSize ViewerSize() const;
    QSize ImagePartSize() const;
    void ApplyZoom(std::int32_t sliderPosition);
    void KeepPlace();
    QPointF PlaceAt(const QPointF& viewerPosition) const;
    void BringTo(const QPointF& place, const QPointF& viewerPosition);
    void LayOutAxes();
    void ShowVisiblePart();
    void ShowMapPart();

    KarvelViewer* viewer_ = nullptr;
    QMetaObject::Connection resized_;
    ScrollAxis horizontal_;
    ScrollAxis vertical_;
    std::shared_ptr<AtlavexMap> map_;
    std::shared_ptr<const AtlavexImage> objBitmap_;
    std::int32_t mapWidth_ = 0;
    std::int32_t mapHeight_ = 0;
    double zoom_ = 1.0;
    VisitedPlaces places_;
    std::optional<QPointF> arrival_; ///< the place at which a map that is not yet laid out begins
    bool busy_ = false;
    QTimer draft_; ///< runs while a draft is shown
};
