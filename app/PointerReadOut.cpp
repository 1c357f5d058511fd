#include "app/PointerReadOut.h"

#include "app/EditorState.h"
#include "app/ScaledFlag.h"
#include "base/ComponentError.h"
#include "view/KarvelViewer.h"
#include "view/clsBitmapView.h"

#include <QLabel>

#include <utility>

PointerReadOut::PointerReadOut(QLabel& line, const EditorState& state, const clsBitmapView& view,
                               std::function<AngleUnit()> unit)
    : line_(line), state_(state), view_(view), unit_(std::move(unit)) {}

void PointerReadOut::Show(const QPoint& viewerPosition) {
    const std::optional<QString> text = TextAt(viewerPosition);
    if (!text)
        return;
    line_.setText(*text);
    isShown_ = true;
}

void PointerReadOut::Renew() {
    if (!isShown_)
        return;
    const std::optional<QString> text = TextUnderPointer();
    line_.setText(text.value_or(ScalingText(state_.mapScaled)));
    isShown_ = text.has_value();
}

std::optional<QString> PointerReadOut::TextUnderPointer() const {
    const std::optional<QPoint> pointer = view_.Viewer()->PointerPosition();
    try {
        return pointer ? TextAt(*pointer) : std::nullopt;
    } catch (const ComponentError&) {
        return std::nullopt; // a pixel that has no coordinate
    }
}

std::optional<QString> PointerReadOut::TextAt(const QPoint& viewerPosition) const {
    const std::optional<ImagePixel> pixel = view_.PixelAt(viewerPosition);
    if (!pixel || state_.currentMap == nullptr)
        return std::nullopt;
    return Coordinate(*pixel);
}

QString PointerReadOut::TextOf(const ImagePixel& pixel) const {
    if (state_.currentMap == nullptr)
        return {};
    const QString place = QStringLiteral("Pixel %1, %2").arg(pixel.x).arg(pixel.y);
    try {
        return place + QStringLiteral(", ") + Coordinate(pixel);
    } catch (const ComponentError&) {
        return place; // the map is not scaled, or the pixel has no coordinate
    }
}

QString PointerReadOut::Coordinate(const ImagePixel& pixel) const {
    const AtlavexMap& map = *state_.currentMap;
    const WorldPosition world =
        map.PixelToWorld({static_cast<double>(pixel.x), static_cast<double>(pixel.y)});
    return map.HasGrid() ? GridReadOut(world.x, world.y) : GeographicReadOut(world.x, world.y, unit_());
}
