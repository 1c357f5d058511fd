#include "app/MapZoom.h"

#include "view/ZoomSlider.h"
#include "view/clsBitmapView.h"

#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>

MapZoom::MapZoom(QSlider& slider, QLabel& percentage, clsBitmapView& view)
    : slider_(slider), percentage_(percentage), view_(view) {}

void MapZoom::ShowZoomOfMap() {
    const std::int32_t position = SliderPositionOf(view_.Zoom());
    const std::int32_t highest = view_.HighestSliderPosition();
    {
        // The slider follows here; its moving must not write a rounded zoom back to the map.
        const QSignalBlocker silent(slider_);
        slider_.setMaximum(highest);
        slider_.setValue(position);
    }
    slider_.setEnabled(true);
    // From the upper left, so that the map stays where it begins or was left.
    if (position > highest)
        view_.ZoomAbout(highest, {0, 0});
    ShowPercentage(view_.Zoom());
}

void MapZoom::SetEnabled(bool enabled) {
    slider_.setEnabled(enabled);
}

void MapZoom::Reset() {
    {
        const QSignalBlocker silent(slider_);
        slider_.setMaximum(TopSliderPosition);
        slider_.setValue(0);
    }
    view_.SetZoom(0);
    ShowPercentage(view_.Zoom());
}

void MapZoom::Follow() {
    ShowPercentage(ZoomAtSliderPosition(slider_.value()));
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
    ShowPercentage(ZoomAtSliderPosition(position));
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
    // A slider that moved while the view is busy would no longer say how the map is shown.
    if (view_.Map() != nullptr && !view_.IsBusy())
        slider_.setMaximum(view_.HighestSliderPosition());
}

void MapZoom::ShowPercentage(double zoom) {
    percentage_.setText(QString::number(ZoomPercentage(zoom)) + QLatin1Char('%'));
}
