#include "dialogs/frmPreferences.h"

#include "platform/modFields.h"
#include "ui_frmPreferences.h"

#include <array>

namespace {

constexpr std::array<std::string_view, 5> TileSizes{"64", "128", "256", "512", "1024"};
constexpr int UsualTileSize = 2; ///< the place of "256"

void SelectUsual(QComboBox& sizes) {
    if (sizes.currentIndex() == -1)
        sizes.setCurrentIndex(UsualTileSize);
}

} // namespace

frmPreferences::frmPreferences(QWidget* parent)
    : DialogForm(parent), ui_(std::make_unique<Ui::frmPreferences>()) {
    ui_->setupUi(this);
    FillCombo(*ui_->ddTileWidth, TileSizes);
    FillCombo(*ui_->ddTileHeight, TileSizes);
    SelectUsualSizes();
    accepted_ = Chosen();
    connect(ui_->rbDegrees, &QRadioButton::clicked, this, &frmPreferences::rbDegrees_Click);
    connect(ui_->rbRadians, &QRadioButton::clicked, this, &frmPreferences::rbRadians_Click);
    connect(ui_->btnOK, &QPushButton::clicked, this, &frmPreferences::btnOK_Click);
    ConnectCancel(*ui_->btnCancel);
}

frmPreferences::~frmPreferences() = default;

void frmPreferences::Load() {
    SelectUsualSizes();
    ui_->ddTileWidth->setFocus();
}

void frmPreferences::SelectUsualSizes() {
    SelectUsual(*ui_->ddTileWidth);
    SelectUsual(*ui_->ddTileHeight);
}

frmPreferences::Choices frmPreferences::Chosen() const {
    return {ComboText(*ui_->ddTileWidth), ComboText(*ui_->ddTileHeight), radiansChosen_,
            ui_->txtTempPath->text()};
}

void frmPreferences::rbDegrees_Click() {
    radiansChosen_ = false;
}

void frmPreferences::rbRadians_Click() {
    radiansChosen_ = true;
}

void frmPreferences::btnOK_Click() {
    accepted_ = Chosen();
    AcceptOK();
}
