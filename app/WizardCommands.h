#pragma once

#include "app/EditorState.h"
#include "app/EditorWindow.h"
#include "view/ViewerMark.h"
#include "view/clsBitmapView.h"

#include <memory>
#include <optional>
#include <vector>

class QKeyEvent;
class clsScalingWizard;

/// The main window's side of georeferencing: starts the wizards, feeds clicks on the map to the one that
/// runs, writes its prompts into lHeader and takes what it brings.
class WizardCommands {
public:
    explicit WizardCommands(const EditorParts& parts);
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
    /// Gives up a wizard that waits for a click, as Cancel in one of its forms does; nothing without one.
    void CancelWaiting();

    /// Says what a running wizard waits for: writes its prompt into lHeader again, which a command may have
    /// emptied, and makes the pointer over the map a cross.
    void ShowPrompt();
    /// Puts the reference points given so far where the map view shows their pixels now, and those of an
    /// earlier scaling, faintly, for as long as a wizard runs. Silent when there are none to be had.
    void ShowMarks();
    /// An arrow key while a wizard waits for a point: with Alt it moves a crosshair by a pixel of the map,
    /// and by more and more for as long as it is held; with Shift too by ten. Whether the key was taken: only
    /// where the map's viewer has the focus.
    bool ViewerKey(const QKeyEvent& key);
    /// The pixel under the crosshair that the keys move.
    std::optional<ImagePixel> Crosshair() const { return crosshair_; }
    /// Gives the wizard the point under the crosshair; nothing without one.
    void PlacePoint();

private:
    void Finish();
    void HidePrompt();
    std::vector<ViewerMark> Marks() const;
    ImagePixel MiddleOfView() const;
    std::optional<QPoint> OnScreen(const ImagePixel& pixel) const;
    void ShowCrosshair(std::optional<ImagePixel> pixel);

    EditorState& state_;
    EditorWindow& window_;
    clsBitmapView& view_;
    TextLines& lines_;
    StatusLine& status_;
    std::unique_ptr<clsScalingWizard> wizard_;
    int repetitions_ = 0;                 ///< of the arrow key that is held
    std::optional<ImagePixel> crosshair_; ///< the point that is being entered
};
