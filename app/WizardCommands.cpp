#include "app/WizardCommands.h"

#include "app/ScaledFlag.h"
#include "base/ComponentError.h"
#include "platform/modMessages.h"
#include "wizard/clsScalingWizard.h"
#include "wizard/clsWorldfileWizard.h"

#include <utility>

WizardCommands::WizardCommands(EditorState& state, EditorWindow& window) : state_(state), window_(window) {}

WizardCommands::~WizardCommands() = default;

void WizardCommands::StartScalingWizard() {
    Discard();
    wizard_ = std::make_unique<clsScalingWizard>(window_.Widget());
    if (!wizard_->DoSelectDatumGrid()) {
        Discard();
        return;
    }
    window_.SetHeader(wizard_->Prompt());
    ShowMarks();
}

void WizardCommands::WizardMapClick(const ImagePixel& pixel) {
    window_.SetHeader(QString());
    if (!wizard_->DoDefineCoordinate(pixel.x, pixel.y)) {
        Discard();
        return;
    }
    ShowMarks();
    if (wizard_->Finished())
        Finish();
    else
        window_.SetHeader(wizard_->Prompt());
}

void WizardCommands::Finish() {
    try {
        wizard_->ScaleMap(state_.currentMap.get());
    } catch (const ComponentError& error) {
        ShowMessage(window_.Widget(), QString::fromStdString(error.Description()));
        Discard();
        return;
    }
    SetScaled(state_, window_, true);
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
    window_.SetHeader(QString());
    ShowMarks();
}

void WizardCommands::ShowMarks() {}

bool WizardCommands::ViewerKey(const QKeyEvent&) {
    return false;
}
