#pragma once

#include "app/EditorState.h"
#include "app/EditorWindow.h"
#include "view/clsBitmapView.h"

#include <memory>

class QKeyEvent;
class clsScalingWizard;

/// The main window's side of georeferencing: starts the wizards, feeds clicks on the map to the one that
/// runs, writes its prompts into lHeader and takes what it brings.
class WizardCommands {
public:
    WizardCommands(EditorState& state, EditorWindow& window);
    ~WizardCommands();

    /// Starts at the first step; a wizard that is running is given up without a word.
    void StartScalingWizard();
    /// A click on the map while a wizard runs.
    void WizardMapClick(const ImagePixel& pixel);
    /// Georeferences the map just added from the pending worldfile.
    void StartWorldfileWizard(const std::shared_ptr<AtlavexMap>& map);

    bool IsRunning() const { return wizard_ != nullptr; }
    /// Gives up a running wizard without a word; lHeader becomes empty.
    void Discard();

    /// Puts the reference points given so far where the map view shows their pixels now.
    void ShowMarks();
    /// A key pressed in the map's viewer while a wizard runs: Alt with the arrows moves a crosshair, Enter
    /// places the point there. Whether the key was taken.
    bool ViewerKey(const QKeyEvent& key);

private:
    void Finish();

    EditorState& state_;
    EditorWindow& window_;
    std::unique_ptr<clsScalingWizard> wizard_;
};
