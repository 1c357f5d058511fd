#pragma once

#include <QPoint>

class QLabel;
class QSlider;
class clsBitmapView;

/// The zoom slider and its label, kept in step with the map view. zoom = e^(position / 10).
class MapZoom {
public:
    MapZoom(QSlider& slider, QLabel& percentage, clsBitmapView& view);

    /// Shows the zoom of the map that has come into the view; the map's zoom itself stays as it is, unless
    /// parts of the map could not be reached at it.
    void ShowZoomOfMap();
    void SetEnabled(bool enabled);
    /// Without a map: the slider stands at 100 %, and the view with it.
    void Reset();
    /// The slider has moved: the map is shown at its position.
    void Follow();
    /// Moves the slider by so many positions; the pixel at `about` (device pixels of the viewer) stays there.
    void TurnAbout(int steps, const QPoint& about);
    void ShowWhole(); ///< the largest zoom at which the whole map is seen
    void ShowActualSize();
    /// The viewer's size has changed, and with it how far one may zoom in.
    void LimitSlider();

private:
    void ShowPercentage(double zoom);

    QSlider& slider_;
    QLabel& percentage_;
    clsBitmapView& view_;
};
