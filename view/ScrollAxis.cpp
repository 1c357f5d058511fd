#include "view/ScrollAxis.h"

#include "base/CheckedNumbers.h"

#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace {

/// Zoomed pixels that a click on a bar's arrow moves the image.
constexpr std::int32_t ArrowStep = 20;

} // namespace

double ZoomedLength(std::int32_t imageSize, double zoom) {
    return std::ceil(imageSize * zoom);
}

void ScrollAxis::LayOut(std::int32_t imageSize, double zoom, std::int32_t viewerSize) {
    const std::int32_t offset = Offset(), stepBefore = step_;
    const double overhang = std::max(0.0, ZoomedLength(imageSize, zoom) - viewerSize);
    // What is beyond the largest overhang cannot be scrolled to; the slider does not offer such a zoom.
    overhang_ = static_cast<std::int32_t>(std::min<double>(overhang, LargestOverhang));
    step_ = overhang > LargestValue ? CoarseStep : 1;
    owed_ = 0;
    if (!bar_)
        return;
    const QSignalBlocker silent(bar_);
    bar_->setRange(0, (overhang_ + step_ - 1) / step_);
    bar_->setSingleStep(ArrowStep / step_);
    bar_->setPageStep(std::clamp(viewerSize / step_, 1, LargestValue));
    if (step_ != stepBefore)
        MoveTo(offset);
}

std::int32_t ScrollAxis::Offset() const {
    return bar_ ? std::min(bar_->value() * step_, overhang_) : 0;
}

double ScrollAxis::ExactOffset() const {
    return Offset() + Owed();
}

double ScrollAxis::Owed() const {
    return bar_ && bar_->value() == valueOfOwed_ ? owed_ : 0;
}

void ScrollAxis::MoveTo(double offset) {
    const double wanted = std::clamp<double>(offset, 0, overhang_);
    if (!bar_)
        return;
    const QSignalBlocker silent(bar_);
    bar_->setValue(CheckedRound<std::int32_t>(wanted / step_));
    // A coarse bar's last position is less than a whole step behind the one before.
    if (overhang_ - wanted < std::abs(wanted - Offset()))
        bar_->setValue(bar_->maximum());
    owed_ = wanted - Offset();
    valueOfOwed_ = bar_->value();
}

void ScrollAxis::MoveBy(std::int32_t pixels) {
    if (!bar_)
        return;
    MoveTo(ExactOffset() + pixels);
}
