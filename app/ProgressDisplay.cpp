#include "app/ProgressDisplay.h"

#include <QApplication>

ProgressDisplay::ProgressDisplay(QWidget& mainWindow, const EditorState& state)
    : mainWindow_(mainWindow), state_(state) {}

void ProgressDisplay::Follow(AtlavexLibrary& library) {
    library.OnProgressBegin = [this](float total, AtlavexLibrary& raising) { Begin(total, raising); };
    library.OnProgress = [this](float done) { Show(done); };
    library.OnProgressEnd = [this] { End(); };
}

void ProgressDisplay::Begin(float total, AtlavexLibrary& library) {
    focused_ = mainWindow_.focusWidget();
    mainWindow_.setEnabled(false);
    // Created only now: a child that is there before its parent is disabled would be disabled with it. A
    // modal dialog in front must be the parent, or no click would reach the Cancel button.
    dialog_ = std::make_unique<frmProgress>(QApplication::activeModalWidget());
    dialog_->SetDiagnosticMode(state_.diagnosticMode);
    dialog_->SetMaximum(total);
    dialog_->SetLibrary(&library);
    dialog_->show();
    QApplication::processEvents();
}

void ProgressDisplay::Show(float done) {
    if (dialog_ == nullptr)
        return;
    dialog_->SetProgress(done);
    QApplication::processEvents();
}

void ProgressDisplay::End() {
    mainWindow_.setEnabled(true);
    dialog_.reset();
    if (focused_ != nullptr)
        focused_->setFocus();
}
