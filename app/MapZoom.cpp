#include "app/MapZoom.h"

#include "base/CheckedNumbers.h"
#include "view/clsBitmapView.h"

#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>
#include <cmath>

namespace {

/// The slider position of a zoom. Its divisor is the logarithm of the five-decimal constant, while the way
/// back takes the true e; the slight drift is meant.
std::int32_t PositionOf(double zoom) {
    return CheckedRound<std::int32_t>(10.0 * std::log(zoom) / std::log(2.71828));
}

} // namespace

MapZoom::MapZoom(QSlider& slider, QLabel& percentage, clsBitmapView& view)
    : slider_(slider), percentage_(percentage), view_(view) {}

void MapZoom::TakeFromMap() {
    const std::int32_t position = PositionOf(view_.Zoom());
    const std::int32_t highest = view_.HighestSliderPosition();
    {
        // The slider follows here; its moving must not write a rounded zoom back to the map.
        const QSignalBlocker silent(slider_);
        slider_.setMaximum(highest);
        slider_.setValue(position);
    }
    slider_.setEnabled(true);
    if (position > highest)
        view_.SetZoom(highest);
    ShowPercentage(view_.Zoom());
}

void MapZoom::Follow() {
    ShowPercentage(std::exp(slider_.value() / 10.0));
    view_.SetZoom(slider_.value());
}

void MapZoom::TurnAbout(int steps, const QPoint& about) {
    if (view_.Map() == nullptr || !slider_.isEnabled())
        return;
    const int position = std::clamp(slider_.value() + steps, slider_.minimum(), slider_.maximum());
    if (position == slider_.value())
        return;
    {
        const QSignalBlocker silent(slider_);
        slider_.setValue(position);
    }
    ShowPercentage(std::exp(position / 10.0));
    view_.ZoomAbout(position, about);
}

void MapZoom::ShowWhole() {
    if (view_.Map() != nullptr)
        slider_.setValue(view_.FitPosition());
}

void MapZoom::ShowActualSize() {
    if (view_.Map() != nullptr)
        slider_.setValue(0);
}

void MapZoom::LimitSlider() {
    if (view_.Map() != nullptr)
        slider_.setMaximum(view_.HighestSliderPosition());
}

void MapZoom::ShowPercentage(double zoom) {
    percentage_.setText(QString::number(CheckedRound<std::int32_t>(zoom * 100.0)) + QLatin1Char('%'));
}
