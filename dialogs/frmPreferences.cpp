#include "dialogs/frmPreferences.h"

#include "platform/modFields.h"
#include "ui_frmPreferences.h"

#include <QShowEvent>

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
    : QDialog(parent), ui_(std::make_unique<Ui::frmPreferences>()) {
    ui_->setupUi(this);
    FillCombo(*ui_->ddTileWidth, TileSizes);
    FillCombo(*ui_->ddTileHeight, TileSizes);
    Load();
    accepted_ = Chosen();
    connect(ui_->rbDegrees, &QRadioButton::clicked, this, &frmPreferences::rbDegrees_Click);
    connect(ui_->rbRadians, &QRadioButton::clicked, this, &frmPreferences::rbRadians_Click);
    connect(ui_->btnOK, &QPushButton::clicked, this, &frmPreferences::btnOK_Click);
    connect(ui_->btnCancel, &QPushButton::clicked, this, &frmPreferences::btnCancel_Click);
}

frmPreferences::~frmPreferences() = default;

void frmPreferences::Load() {
    SelectUsual(*ui_->ddTileWidth);
    SelectUsual(*ui_->ddTileHeight);
}

frmPreferences::Choices frmPreferences::Chosen() const {
    return {ComboText(*ui_->ddTileWidth), ComboText(*ui_->ddTileHeight), radiansChosen_,
            ui_->txtTempPath->text()};
}

void frmPreferences::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) {
        Load();
        ui_->ddTileWidth->setFocus();
    }
    QDialog::showEvent(event);
}

void frmPreferences::rbDegrees_Click() {
    radiansChosen_ = false;
}

void frmPreferences::rbRadians_Click() {
    radiansChosen_ = true;
}

void frmPreferences::btnOK_Click() {
    ok_ = true;
    accepted_ = Chosen();
    accept();
}

void frmPreferences::btnCancel_Click() {
    reject();
}

void frmPreferences::reject() {
    ok_ = false;
    QDialog::reject();
}
