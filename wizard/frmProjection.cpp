#include "wizard/frmProjection.h"

#include "platform/modMessages.h"
#include "ui_frmProjection.h"
#include "wizard/Projections.h"

namespace {

// The closing quotation mark is part of the text.
const auto HelpText =
    QStringLiteral("In this step you select how the longitude / latitude or "
                   "easting / northing lines are drawn on the map. The most common case is Cartesian\"");

} // namespace

frmProjection::frmProjection(QWidget* parent)
    : WizardForm(parent), ui_(std::make_unique<Ui::frmProjection>()) {
    ui_->setupUi(this);
    ui_->imgCartesian->Show(WizardPicture::Subject::Linear);
    ui_->imgPolar->Show(WizardPicture::Subject::Polar);
    ConnectCommonControls();
    connect(ui_->imgCartesian, &WizardPicture::Clicked, this, &frmProjection::imgCartesian_Click);
    connect(ui_->imgPolar, &WizardPicture::Clicked, this, &frmProjection::imgPolar_Click);
}

frmProjection::~frmProjection() = default;

void frmProjection::Form_Load() {
    projection_ = 0;
    WriteHelp(*ui_->txtHelp, HelpText);
}

void frmProjection::imgCartesian_Click() {
    ui_->rbCartesian->setChecked(true);
}

void frmProjection::imgPolar_Click() {
    ui_->rbPolar->setChecked(true);
}

void frmProjection::bNext_Click() {
    if (ui_->rbCartesian->isChecked()) {
        projection_ = CartesianProjection;
    } else if (ui_->rbPolar->isChecked()) {
        projection_ = PolarProjection;
    } else {
        ShowMessage(this, QStringLiteral("You must select a projection type!"));
        return;
    }
    Confirm();
}
