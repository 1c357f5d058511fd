#include "wizard/frmSelectDatumGrid.h"

#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"
#include "catalogue/modCountryData.h"
#include "catalogue/modCountryGadgets.h"
#include "platform/RemoteCoordinates.h"
#include "platform/modFields.h"
#include "platform/modMessages.h"
#include "ui_frmSelectDatumGrid.h"

namespace {

const auto HelpText = QStringLiteral(
    "In this step you need to specify which coordinate "
    "system your raster map is using (for map projection).\r\n"
    "I. Select a Country / Region.\r\n"
    "II. Select if the coordinates are spcified in lat/lon or easting/northing \r\n"
    "III. Select the grid or datum. \r\n"
    "The coordniate system choosen is that in which the map is conformal.\r\n"
    "Conformality - "
    "When the scale of a map at any point on the map is the same in any direction, the projection is "
    "conformal. Meridians (lines of longitude) and parallels (lines of latitude) intersect at right angles. "
    "Shape is preserved locally on conformal maps.");

/// The place stays taken while a frame is hidden, so that the form does not jump.
void KeepPlace(QWidget& frame) {
    QSizePolicy policy = frame.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    frame.setSizePolicy(policy);
}

} // namespace

frmSelectDatumGrid::frmSelectDatumGrid(QWidget* parent)
    : WizardForm(parent), ui_(std::make_unique<Ui::frmSelectDatumGrid>()) {
    ui_->setupUi(this);
    KeepPlace(*ui_->frameDatum);
    KeepPlace(*ui_->frameGrid);
    chooser_.emplace(GridChooser::Fields{*ui_->ddGrid, *ui_->lZone, *ui_->ddZone, *ui_->txtZone});
    ConnectCommonControls();
    connect(ui_->ddCountry, &QComboBox::currentIndexChanged, this, &frmSelectDatumGrid::ddCountry_Click);
    connect(ui_->ddGrid, &QComboBox::currentIndexChanged, this, &frmSelectDatumGrid::ddGrid_Click);
    connect(ui_->rbShowDatum, &QRadioButton::toggled, this, &frmSelectDatumGrid::rbShowDatum_Click);
    connect(ui_->rdShowGrid, &QRadioButton::toggled, this, &frmSelectDatumGrid::rdShowGrid_Click);
}

frmSelectDatumGrid::~frmSelectDatumGrid() = default;

void frmSelectDatumGrid::Form_Load() {
    WriteHelp(*ui_->txtHelp, HelpText);
    FillCombo(*ui_->ddCountry, Countries);
    ui_->rbShowDatum->setChecked(true);
    ui_->ddCountry->setCurrentIndex(0);
}

bool frmSelectDatumGrid::IsCustom() const {
    return ui_->ddCountry->currentIndex() == 0;
}

void frmSelectDatumGrid::ShowFrames() {
    ui_->frameDatum->setVisible(!IsCustom() && ui_->rbShowDatum->isChecked());
    ui_->frameGrid->setVisible(!IsCustom() && ui_->rdShowGrid->isChecked());
}

void frmSelectDatumGrid::ddCountry_Click() {
    ShowFrames();
    if (IsCustom())
        chooser_->Unselect(ui_->ddDatum);
    else
        chooser_->Offer(ComboText(*ui_->ddCountry), ui_->ddDatum);
}

void frmSelectDatumGrid::ddGrid_Click() {
    chooser_->GridChanged();
}

void frmSelectDatumGrid::rbShowDatum_Click() {
    ShowFrames();
}

void frmSelectDatumGrid::rdShowGrid_Click() {
    ShowFrames();
}

void frmSelectDatumGrid::bNext_Click() {
    datum_.reset();
    grid_.reset();
    gridIdentifier_ = 0;
    zone_ = 0;
    if (!(IsCustom() ? AskForCustom() : ui_->rbShowDatum->isChecked() ? ReadDatum() : ReadGrid()))
        return;
    useLonLat_ = ui_->rbShowDatum->isChecked();
    useGrid_ = ui_->rdShowGrid->isChecked();
    Confirm();
}

bool frmSelectDatumGrid::AskForCustom() {
    // Whatever comes of it, the step is done: the map says later whether it can be scaled without.
    if (ui_->rbShowDatum->isChecked())
        datum_ = GetCustomDatum(*this);
    else if (ui_->rdShowGrid->isChecked())
        grid_ = GetCustomGrid(*this);
    // Unless the form was cancelled while the other program was asked.
    return isVisible();
}

bool frmSelectDatumGrid::ReadDatum() {
    const std::int16_t identifier = DatumIdentifier(ComboText(*ui_->ddDatum).toStdString());
    if (identifier == 0) {
        ShowMessage(this, QStringLiteral("No datum selected!"));
        return false;
    }
    datum_ = MakeDatum(identifier);
    return true;
}

bool frmSelectDatumGrid::ReadGrid() {
    const std::optional<GridChoice> chosen = chooser_->Choose(this);
    if (!chosen)
        return false;
    gridIdentifier_ = chosen->identifier;
    zone_ = CheckedNarrow<std::int16_t>(chosen->zone);
    grid_ = chosen->grid;
    return true;
}
