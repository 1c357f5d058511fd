#include "wizard/frmSelectWorldfileGrid.h"

#include "base/CheckedNumbers.h"
#include "catalogue/modCountryData.h"
#include "platform/RemoteCoordinates.h"
#include "platform/modFields.h"
#include "platform/modMessages.h"
#include "ui_frmSelectWorldfileGrid.h"

namespace {

const auto HelpText = QStringLiteral("In this step you need to specify which coordinate "
                                     "system your raster map is using (for map projection).\r\n"
                                     "I. Select a Country / Region.\r\n"
                                     "II. Select the grid. \r\n"
                                     "(The scale is extracted from the worldfile.)");

} // namespace

frmSelectWorldfileGrid::frmSelectWorldfileGrid(QWidget* parent)
    : WizardForm(parent), ui_(std::make_unique<Ui::frmSelectWorldfileGrid>()) {
    ui_->setupUi(this);
    chooser_.emplace(GridChooser::Fields{*ui_->ddGrid, *ui_->lZone, *ui_->ddZone, *ui_->txtZone});
    ConnectCommonControls();
    connect(ui_->ddCountry, &QComboBox::activated, this, &frmSelectWorldfileGrid::ddCountry_Click);
    connect(ui_->ddCountry, &QComboBox::currentIndexChanged, this,
            &frmSelectWorldfileGrid::ddCountry_Changed);
    connect(ui_->ddGrid, &QComboBox::currentIndexChanged, this, &frmSelectWorldfileGrid::ddGrid_Click);
}

frmSelectWorldfileGrid::~frmSelectWorldfileGrid() = default;

void frmSelectWorldfileGrid::Form_Load() {
    WriteHelp(*ui_->txtHelp, HelpText);
    FillCombo(*ui_->ddCountry, Countries);
    ui_->ddCountry->setCurrentIndex(0);
}

bool frmSelectWorldfileGrid::IsCustom() const {
    return ui_->ddCountry->currentIndex() == 0;
}

void frmSelectWorldfileGrid::ddCountry_Click() {
    // Only the user's own choice, made again too, opens the other program's dialog.
    if (IsCustom())
        customGrid_ = GetCustomGrid(*this);
}

void frmSelectWorldfileGrid::ddCountry_Changed() {
    for (QWidget* const field : std::initializer_list<QWidget*>{ui_->ddGrid, ui_->ddZone, ui_->frameGrid})
        field->setEnabled(!IsCustom());
    if (IsCustom())
        chooser_->Unselect(nullptr);
    else
        chooser_->Offer(ComboText(*ui_->ddCountry), nullptr);
}

void frmSelectWorldfileGrid::ddGrid_Click() {
    chooser_->GridChanged();
}

void frmSelectWorldfileGrid::bNext_Click() {
    if (!(IsCustom() ? ReadCustomGrid() : ReadListedGrid()))
        return;
    country_ = ComboText(*ui_->ddCountry);
    Confirm();
}

bool frmSelectWorldfileGrid::ReadCustomGrid() {
    if (!customGrid_) {
        ShowMessage(this, QStringLiteral("No custom datum or grid is selected!"));
        return false;
    }
    identifier_ = 0;
    zone_ = 0;
    grid_ = customGrid_;
    return true;
}

bool frmSelectWorldfileGrid::ReadListedGrid() {
    const std::optional<GridChoice> chosen = chooser_->Choose(this);
    if (!chosen)
        return false;
    identifier_ = chosen->identifier;
    zone_ = CheckedNarrow<std::int16_t>(chosen->zone);
    grid_ = chosen->grid;
    return true;
}
