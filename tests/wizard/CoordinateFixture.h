#pragma once

#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ModalScript.h"
#include "wizard/frmCoordinate.h"

/// The form of a reference point, shown as often as a test likes.
class CoordinateFormTest : public ::testing::Test {
protected:
    static QString Name() { return QStringLiteral("frmCoordinate"); }

    /// Shows the form once; the answer is whether it was confirmed.
    bool Show(const std::function<void(QWidget&)>& act) {
        script.Expect(Name(), act);
        return form.ShowModal();
    }

    void UseGrid() {
        form.UseGrid = true;
        form.UseLonLat = false;
    }

    ModalScript script;
    frmCoordinate form;
};
