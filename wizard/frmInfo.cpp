#include "wizard/frmInfo.h"

#include "ui_frmInfo.h"

frmInfo::frmInfo(QWidget* parent) : WizardForm(parent), ui_(std::make_unique<Ui::frmInfo>()) {
    ui_->setupUi(this);
    ui_->imgCorner1->Show(WizardPicture::Subject::UpperLeft);
    ui_->imgCorner2->Show(WizardPicture::Subject::LowerLeft);
    ui_->imgCorner3->Show(WizardPicture::Subject::UpperRight);
    ui_->imgCorner4->Show(WizardPicture::Subject::LowerRight);
    ConnectCommonControls();
}

frmInfo::~frmInfo() = default;

void frmInfo::bNext_Click() {
    Confirm();
}
