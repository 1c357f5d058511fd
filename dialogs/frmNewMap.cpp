#include "dialogs/frmNewMap.h"

#include "platform/modFields.h"
#include "ui_frmNewMap.h"

#include <limits>

namespace {

constexpr int PresetTile = 2; ///< "256"

const QStringList TileSides{QStringLiteral("64"), QStringLiteral("128"), QStringLiteral("256"),
                            QStringLiteral("512"), QStringLiteral("1024")};

} // namespace

frmNewMap::frmNewMap(QWidget* parent) : DialogForm(parent), ui_(std::make_unique<Ui::frmNewMap>()) {
    ui_->setupUi(this);
    // A wrapped text's lines depend on its width, which a layout in a frame does not always take into
    // account.
    ui_->lbWarning->setMinimumHeight(ui_->lbWarning->heightForWidth(ui_->lbWarning->minimumWidth()));
    for (QLineEdit* const field : {ui_->tbName, ui_->tbDescription})
        field->setMaxLength(std::numeric_limits<int>::max()); // a text that is pasted shall not be cut
    FillCombo(*ui_->ddTileWidth, TileSides);
    FillCombo(*ui_->ddTileHeight, TileSides);
    connect(ui_->btnOK, &QPushButton::clicked, this, &frmNewMap::btnOK_Click);
    ConnectCancel(*ui_->btnCancel);
}

frmNewMap::~frmNewMap() = default;

void frmNewMap::SetName(const QString& name) {
    ui_->tbName->setText(name);
}

void frmNewMap::SetTile(const QString& width, const QString& height) {
    SelectComboItem(*ui_->ddTileWidth, width, false);
    SelectComboItem(*ui_->ddTileHeight, height, false);
}

void frmNewMap::ReduceToIcon() {
    setWindowTitle(QStringLiteral("New icon settings..."));
    for (QComboBox* const list : {ui_->ddTileWidth, ui_->ddTileHeight}) {
        FillCombo(*list, QStringList{QStringLiteral("n/a")});
        list->setCurrentIndex(0);
        list->setEnabled(false);
    }
    ui_->lbWarning->hide();
}

QString frmNewMap::Name() const {
    return ui_->tbName->text();
}

QString frmNewMap::Description() const {
    return ui_->tbDescription->text();
}

std::int32_t frmNewMap::TileWidth() const {
    return ComboText(*ui_->ddTileWidth).toInt();
}

std::int32_t frmNewMap::TileHeight() const {
    return ComboText(*ui_->ddTileHeight).toInt();
}

void frmNewMap::Load() {
    for (QComboBox* const list : {ui_->ddTileWidth, ui_->ddTileHeight})
        if (list->currentIndex() == -1)
            list->setCurrentIndex(PresetTile);
    ui_->tbName->setFocus();
    ui_->tbName->selectAll();
}

void frmNewMap::btnOK_Click() {
    AcceptOK();
}
