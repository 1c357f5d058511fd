#include "app/StatusLine.h"

#include "app/EditorState.h"
#include "base/ComponentError.h"
#include "view/KarvelViewer.h"
#include "view/clsBitmapView.h"

#include <QLabel>

#include <utility>

namespace {

QString ScalingText(bool scaled) {
    return scaled ? QStringLiteral("Click on map to verify positions") : QStringLiteral("Not scaled");
}

} // namespace

StatusLine::StatusLine(QLabel& line, EditorState& state, const clsBitmapView& view,
                       std::function<AngleUnit()> unit)
    : line_(line), state_(state), view_(view), unit_(std::move(unit)) {}

void StatusLine::SetScaled(bool scaled) {
    state_.mapScaled = scaled;
    line_.setText(ScalingText(scaled));
    isReadOut_ = false;
}

void StatusLine::ShowStoredScaling() {
    SetScaled(state_.currentMap != nullptr && state_.currentMap->IsScaled());
}

void StatusLine::ReadOut(const ImagePixel& pixel) {
    const std::optional<QString> text = Coordinate(pixel);
    if (!text)
        return;
    line_.setText(*text);
    isReadOut_ = true;
}

void StatusLine::Renew() {
    if (!isReadOut_)
        return;
    const std::optional<ImagePixel> pixel = PixelUnderPointer();
    const std::optional<QString> text = pixel ? Coordinate(*pixel) : std::nullopt;
    line_.setText(text.value_or(ScalingText(state_.mapScaled)));
    isReadOut_ = text.has_value();
}

std::optional<ImagePixel> StatusLine::PixelUnderPointer() const {
    const std::optional<QPoint> pointer = view_.Viewer()->PointerPosition();
    return pointer ? view_.PixelAt(*pointer) : std::nullopt;
}

QString StatusLine::TextOf(const ImagePixel& pixel) const {
    if (state_.currentMap == nullptr)
        return {};
    const QString place = QStringLiteral("Pixel %1, %2").arg(pixel.x).arg(pixel.y);
    const std::optional<QString> coordinate = Coordinate(pixel);
    return coordinate ? place + QStringLiteral(", ") + *coordinate : place;
}

/// Nothing where the map is not scaled, or the pixel has no coordinate.
std::optional<QString> StatusLine::Coordinate(const ImagePixel& pixel) const {
    if (state_.currentMap == nullptr)
        return std::nullopt;
    const AtlavexMap& map = *state_.currentMap;
    try {
        const WorldPosition world =
            map.PixelToWorld({static_cast<double>(pixel.x), static_cast<double>(pixel.y)});
        return map.HasGrid() ? GridReadOut(world.x, world.y) : GeographicReadOut(world.x, world.y, unit_());
    } catch (const ComponentError&) {
        return std::nullopt;
    }
}
