#pragma once

#include "component/AtlavexMap.h"

#include <QString>

class QWidget;

/// Scales a map by the worldfile that lay beside its image: asks for the grid alone.
class clsWorldfileWizard {
public:
    /// Dialogs and messages stand before `parent`, which must outlive the wizard.
    explicit clsWorldfileWizard(QWidget* parent) : parent_(parent) {}

    /// Asks for the grid and hands it to the map together with the worldfile's scale. False when it was
    /// cancelled or failed, which the user has been told. `orientation` is how the image's stored pixels,
    /// which the worldfile counts, were turned for display.
    bool DoSelectDatumGrid(AtlavexMap& map, const QString& worldfilePath,
                           Orientation orientation = Orientation::TopLeft);

private:
    QWidget* parent_;
};
