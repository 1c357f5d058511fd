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

/// The status line: whether the current map is scaled, or the coordinate of the pixel under the pointer. As
/// long as a coordinate stands there it is true to what the view shows: whoever copies it must not get that
/// of a place that has been scrolled away.
class StatusLine {
public:
    StatusLine(QLabel& line, EditorState& state, const clsBitmapView& view, std::function<AngleUnit()> unit);

    /// Says whether the current map is scaled: the editor's flag and the line together.
    void SetScaled(bool scaled);
    /// The same from what is stored with the current map: for a map that becomes current through a load or
    /// the user's choice. Without a current map: not scaled.
    void ShowStoredScaling();

    /// Reads out the pixel; one that has no coordinate leaves the line as it is.
    void ReadOut(const ImagePixel& pixel);
    /// The view has changed: a read-out is made anew for the pixel under the pointer; where there is none
    /// the line says again whether the map is scaled.
    void Renew();
    /// The pixel and, of a scaled map, its coordinate in words: "Pixel 12, 34", "Pixel 12, 34, Longitude: …".
    /// Empty without a map.
    QString TextOf(const ImagePixel& pixel) const;

private:
    std::optional<QString> Coordinate(const ImagePixel& pixel) const;
    std::optional<ImagePixel> PixelUnderPointer() const;

    QLabel& line_;
    EditorState& state_;
    const clsBitmapView& view_;
    std::function<AngleUnit()> unit_;
    bool isReadOut_ = false; ///< a coordinate stands in the line
};
