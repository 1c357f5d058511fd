#pragma once

#include "component/AtlavexMap.h"

#include <QPoint>

#include <cstdint>
#include <memory>
#include <optional>

class KarvelViewer;
class QScrollBar;

/// A pixel of an image, whole and unzoomed; the integer pixel is its centre.
struct ImagePixel {
    std::int32_t x = 0;
    std::int32_t y = 0;
    bool operator==(const ImagePixel&) const = default;
};

/// Ties a viewer and a pair of scroll bars to the map or icon that is shown, keeps the zoom, and turns scroll
/// positions into the part of the image on the screen. Sizes and positions in the viewer are device pixels.
class clsBitmapView {
public:
    /// The viewer and the scroll bars must outlive the view, or be gone together with it.
    void SetViewer(KarvelViewer* viewer); ///< resets the zoom to 1.0
    KarvelViewer* Viewer() const { return viewer_; }
    void SetScrollBars(QScrollBar* horizontal, QScrollBar* vertical);

    /// The size set by the owner, in pixels; when that is 0 the shown image's, without an image 0.
    std::int32_t MapWidth() const;
    std::int32_t MapHeight() const;
    void SetMapWidth(std::int32_t pixels) { mapWidth_ = pixels; }
    void SetMapHeight(std::int32_t pixels) { mapHeight_ = pixels; }

    const std::shared_ptr<AtlavexMap>& Map() const { return map_; }
    /// Stores the map, makes it the shown image and takes its zoom.
    void SetMap(std::shared_ptr<AtlavexMap> map);
    const std::shared_ptr<const AtlavexImage>& objBitmap() const { return objBitmap_; }
    void SetObjBitmap(std::shared_ptr<const AtlavexImage> image);

    double Zoom() const { return zoom_; }
    /// zoom = e^(slider position / 10), written to the map's zoom; lays out anew.
    void SetZoom(std::int32_t sliderPosition);
    /// The upper end of the zoom slider for this image: the highest position up to 20 at which every pixel
    /// can be scrolled to.
    std::int32_t HighestSliderPosition() const;

    /// Forgets map and image; the viewer shows nothing.
    void Clear();
    /// Lays out viewer and scroll bars for the image's size and zoom and sets the scroll ranges; renders once.
    void AdjustSize();
    void ChangeVScroll();
    void ChangeHScroll();

    /// Zoomed pixels from the image's left and upper edge to the viewer's, as the scroll bars stand.
    std::int32_t HorizontalOffset() const;
    std::int32_t VerticalOffset() const;
    /// The image pixel under a position in the viewer: position plus offset (checked 32-bit sum), divided by
    /// the zoom, rounded half to even. ErrorNumber::Overflow.
    ImagePixel PixelAt(const QPoint& viewerPosition) const;

private:
    KarvelViewer* viewer_ = nullptr;
    QScrollBar* horizontal_ = nullptr;
    QScrollBar* vertical_ = nullptr;
    std::shared_ptr<AtlavexMap> map_;
    std::shared_ptr<const AtlavexImage> objBitmap_;
    std::int32_t mapWidth_ = 0;
    std::int32_t mapHeight_ = 0;
    double zoom_ = 1.0;
    bool coarseHorizontal_ = false;
    bool coarseVertical_ = false;
};
