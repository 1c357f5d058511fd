#pragma once

#include "app/EditorState.h"
#include "dialogs/frmProgress.h"

#include <QPointer>

#include <memory>

/// Shows what a library's long operations report: the main window disabled, the progress dialog in front.
class ProgressDisplay {
public:
    ProgressDisplay(QWidget& mainWindow, const EditorState& state);

    /// Follows this library's events. The display must outlive the library's operations.
    void Follow(AtlavexLibrary& library);

private:
    void Begin(float total, AtlavexLibrary& library);
    void Show(float done);
    void End();

    QWidget& mainWindow_;
    const EditorState& state_;
    std::unique_ptr<frmProgress> dialog_;
    QPointer<QWidget> focused_;
};
