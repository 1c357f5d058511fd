#pragma once

#include "wizard/WizardForm.h"

#include <memory>

namespace Ui {
class frmInfo;
}

/// Shown before the corners of a polar map are clicked: which corners, in which order. However it is closed,
/// the wizard continues.
class frmInfo : public WizardForm {
    Q_OBJECT

public:
    explicit frmInfo(QWidget* parent = nullptr);
    ~frmInfo() override;

protected:
    void Form_Load() override;
    void bNext_Click() override;

private:
    std::unique_ptr<Ui::frmInfo> ui_;
};
