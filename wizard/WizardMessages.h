#pragma once

#include "base/StandardErrors.h"
#include "platform/modMessages.h"

// What both wizards say.

/// Every cancelled step ends with this.
inline void ShowWizardCancelled(QWidget* parent) {
    ShowMessage(parent,
                QStringLiteral("Wizard canceled! Select 'Bitmap -> Scaling Wizard...' from menu to restart "
                               "the Wizard."));
}

inline void ShowInvalidScaling(QWidget* parent, const std::exception& error) {
    ShowError(parent, QStringLiteral("Invalid scaling: ") + QString::fromStdString(SentenceOf(error)));
}
