#pragma once

#include "wizard/WizardForm.h"

#include <cstdint>
#include <memory>

namespace Ui {
class frmProjection;
}

/// Step 2 of the scaling wizard: how the coordinate lines run on the map. Nothing is chosen at first.
class frmProjection : public WizardForm {
    Q_OBJECT

public:
    explicit frmProjection(QWidget* parent = nullptr);
    ~frmProjection() override;

    /// 1 Cartesian, 2 Polar; 0 unless confirmed.
    std::int16_t Projection() const { return projection_; }

protected:
    void Form_Load() override;
    void bNext_Click() override;

private:
    void imgCartesian_Click();
    void imgPolar_Click();

    std::unique_ptr<Ui::frmProjection> ui_;
    std::int16_t projection_ = 0;
};
