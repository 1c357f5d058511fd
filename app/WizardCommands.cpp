#include "app/WizardCommands.h"

#include "app/EntryLists.h"
#include "app/StatusLine.h"
#include "app/TextLines.h"
#include "base/ComponentError.h"
#include "platform/modMessages.h"
#include "view/KarvelViewer.h"
#include "wizard/WizardMessages.h"
#include "wizard/clsScalingWizard.h"
#include "wizard/clsWorldfileWizard.h"

#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace {

constexpr std::int32_t LargeStep = 10;

/// A key that is held doubles its step after so many repetitions, and so often at most.
constexpr int RepetitionsOfAStep = 8;
constexpr int MostDoublings = 6;

/// How far an arrow key moves, in pixels of the map; nothing for other keys.
ImagePixel Movement(int key, std::int32_t step) {
    switch (key) {
    case Qt::Key_Left:
        return {-step, 0};
    case Qt::Key_Right:
        return {step, 0};
    case Qt::Key_Up:
        return {0, -step};
    case Qt::Key_Down:
        return {0, step};
    default:
        return {};
    }
}

ImagePixel Inside(const ImagePixel& pixel, const clsBitmapView& view) {
    return {std::clamp(pixel.x, 0, std::max(view.MapWidth() - 1, 0)),
            std::clamp(pixel.y, 0, std::max(view.MapHeight() - 1, 0))};
}

} // namespace

WizardCommands::WizardCommands(const EditorParts& parts)
    : state_(parts.state), window_(parts.window), view_(parts.maps.View()), lines_(parts.lines),
      status_(parts.status) {}

WizardCommands::~WizardCommands() = default;

void WizardCommands::StartScalingWizard() {
    Discard();
    wizard_ = std::make_unique<clsScalingWizard>(window_.Widget());
    if (!wizard_->DoSelectDatumGrid()) {
        Discard();
        return;
    }
    ShowPrompt();
    ShowMarks();
}

void WizardCommands::ShowPrompt() {
    if (wizard_ == nullptr)
        return;
    lines_.SetHeader(wizard_->Prompt());
    view_.Viewer()->SetPointer(Qt::CrossCursor);
}

void WizardCommands::HidePrompt() {
    lines_.SetHeader(QString());
    view_.Viewer()->SetPointer(Qt::ArrowCursor);
}

std::optional<QPoint> WizardCommands::OnScreen(const ImagePixel& pixel) const {
    const KarvelViewer& viewer = *view_.Viewer();
    try {
        const QPointF place = view_.ViewerPosition(pixel.x, pixel.y);
        return viewer.mapToGlobal(place / viewer.devicePixelRatioF()).toPoint();
    } catch (const ComponentError&) {
        return std::nullopt;
    }
}

void WizardCommands::WizardMapClick(const ImagePixel& pixel) {
    HidePrompt();
    ShowCrosshair(pixel);
    const bool defined = wizard_->DoDefineCoordinate(pixel.x, pixel.y, OnScreen(pixel));
    ShowCrosshair(std::nullopt);
    if (!defined) {
        Discard();
        return;
    }
    if (wizard_->Finished())
        Finish();
    else
        ShowPrompt();
}

void WizardCommands::Finish() {
    try {
        wizard_->ScaleMap(state_.currentMap.get());
    } catch (const std::exception& error) {
        ShowMessage(window_.Widget(), QString::fromUtf8(error.what()));
        Discard();
        return;
    }
    status_.SetScaled(true);
    state_.modified = true;
    Discard();
    ShowMessage(window_.Widget(), QStringLiteral("Scaling completed!"));
}

void WizardCommands::StartWorldfileWizard(const std::shared_ptr<AtlavexMap>& map) {
    const QString worldfile = std::exchange(state_.pendingWorldfile, {});
    clsWorldfileWizard wizard(window_.Widget());
    // Only the flag: whoever added the map says it in the status line.
    if (wizard.DoSelectDatumGrid(*map, worldfile, map->ImageTurn()))
        state_.mapScaled = true;
}

void WizardCommands::Discard() {
    if (wizard_ == nullptr)
        return;
    wizard_.reset();
    crosshair_.reset();
    HidePrompt();
    ShowMarks();
}

void WizardCommands::CancelWaiting() {
    if (wizard_ == nullptr)
        return;
    HidePrompt();
    ShowWizardCancelled(window_.Widget());
    Discard();
}

void WizardCommands::ShowMarks() {
    KarvelViewer* const viewer = view_.Viewer();
    if (viewer == nullptr)
        return;
    try {
        viewer->SetMarks(Marks());
    } catch (const ComponentError&) {
        viewer->SetMarks({});
    }
}

std::vector<ViewerMark> WizardCommands::Marks() const {
    std::vector<ViewerMark> marks;
    if (wizard_ == nullptr)
        return marks;
    const auto add = [&](std::int32_t x, std::int32_t y, ViewerMarkStyle style, const QString& text) {
        marks.push_back({view_.ViewerPosition(x, y), style, text});
    };
    if (state_.currentMap != nullptr) {
        for (const ReferencePoint& point : state_.currentMap->MapGeoreference().points)
            add(point.pixelX, point.pixelY, ViewerMarkStyle::FormerPoint, {});
    }
    int number = 0;
    for (const ReferencePoint& point : wizard_->GivenPoints())
        add(point.pixelX, point.pixelY, ViewerMarkStyle::ReferencePoint, QString::number(++number));
    if (crosshair_)
        add(crosshair_->x, crosshair_->y, ViewerMarkStyle::Crosshair, {});
    return marks;
}

void WizardCommands::ShowCrosshair(std::optional<ImagePixel> pixel) {
    crosshair_ = pixel;
    ShowMarks();
}

ImagePixel WizardCommands::MiddleOfView() const {
    return view_.PixelAt(view_.MiddleOfImagePart()).value_or(ImagePixel());
}

bool WizardCommands::ViewerKey(const QKeyEvent& key) {
    const Qt::KeyboardModifiers modifiers = key.modifiers() & ~Qt::KeypadModifier;
    const bool large = modifiers == (Qt::AltModifier | Qt::ShiftModifier);
    if (wizard_ == nullptr || view_.Map() == nullptr || !view_.Viewer()->hasFocus() ||
        (modifiers != Qt::AltModifier && !large))
        return false;
    repetitions_ = key.isAutoRepeat() ? repetitions_ + 1 : 0;
    const std::int32_t step = 1 << std::min(repetitions_ / RepetitionsOfAStep, MostDoublings);
    const ImagePixel by = Movement(key.key(), large ? LargeStep : step);
    const ImagePixel from = crosshair_.value_or(MiddleOfView());
    const ImagePixel to = Inside({from.x + by.x, from.y + by.y}, view_);
    const QRect visible(0, 0, view_.Viewer()->PixelWidth(), view_.Viewer()->PixelHeight());
    if (!visible.contains(view_.ViewerPosition(to.x, to.y)))
        view_.CenterOn(to.x, to.y);
    ShowCrosshair(to);
    return true;
}

void WizardCommands::PlacePoint() {
    if (wizard_ != nullptr && crosshair_)
        WizardMapClick(ImagePixel(*crosshair_));
}
