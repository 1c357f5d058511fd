#pragma once

#include "app/ReadOut.h"

#include <QPoint>
#include <QString>

#include <functional>
#include <optional>

class QLabel;
class clsBitmapView;
struct EditorState;
struct ImagePixel;

/// The read-out in the status line: the coordinate of the pixel under the pointer. As long as it stands
/// there it is true to what the view shows: whoever copies it must not get the coordinate of a place that
/// has been scrolled away.
class PointerReadOut {
public:
    PointerReadOut(QLabel& line, const EditorState& state, const clsBitmapView& view,
                   std::function<AngleUnit()> unit);

    /// Reads out the pixel at a position of the viewer; beside the map the line stays. Errors: those of
    /// clsBitmapView::PixelAt and AtlavexMap::PixelToWorld.
    void Show(const QPoint& viewerPosition);
    /// The view has changed: a read-out is made anew for the pixel under the pointer; where there is none
    /// the line says again whether the map is scaled.
    void Renew();
    /// The pixel and, of a scaled map, its coordinate in words: "Pixel 12, 34", "Pixel 12, 34, Longitude: …".
    /// Empty without a map.
    QString TextOf(const ImagePixel& pixel) const;
    /// Another text stands in the line now.
    void Forget() { isShown_ = false; }

private:
    QString Coordinate(const ImagePixel& pixel) const;
    std::optional<QString> TextAt(const QPoint& viewerPosition) const;
    std::optional<QString> TextUnderPointer() const;

    QLabel& line_;
    const EditorState& state_;
    const clsBitmapView& view_;
    std::function<AngleUnit()> unit_;
    bool isShown_ = false;
};
