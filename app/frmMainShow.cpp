// What the commands ask the main window to show.

#include "app/EntryLists.h"
#include "app/MapZoom.h"
#include "app/PointerReadOut.h"
#include "app/WizardCommands.h"
#include "app/frmMain.h"
#include "base/ComponentError.h"
#include "platform/modMessages.h"
#include "ui_frmMain.h"

void frmMain::SetTitle(const QString& name) {
    // "[*]" in a title stands for the mark of a changed document unless it is doubled.
    setWindowTitle(QStringLiteral("Quorvant Studio - ") +
                   QString(name).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")));
}

void frmMain::SetHeader(const QString& text) {
    ui_->lHeader->Say(text);
}

void frmMain::SetStatus(const QString& text) {
    ui_->lStatus->setText(text);
    readOut_->Forget();
}

void frmMain::SetSizeText(const QString& text) {
    ui_->lbSize->setText(text);
}

void frmMain::ShowSizeOfPage() {
    SetSizeText(ui_->tabAtlavex->currentIndex() == 0 ? MapSizeText(mapView_) : IconSizeText(iconView_));
}

void frmMain::RefillMaps(int select) {
    try {
        lists_->RefillMaps();
        if (select >= 0 && select < MapEntries())
            SelectMap(select);
    } catch (const std::exception&) {
        // Rather no map than the former one, which is not what was asked for.
        state_.currentMap.reset();
        mapView_.Clear();
        throw;
    }
    EnableMenus();
}

void frmMain::RefillIcons(int select) {
    lists_->RefillIcons();
    try {
        if (select >= 0 && select < IconEntries())
            SelectIcon(select);
    } catch (const ComponentError& error) {
        // One icon that cannot be read must not keep all else from being shown.
        state_.currentIcon.reset();
        iconView_.Clear();
        ShowMessage(this, QString::fromStdString(error.Description()));
    }
    EnableMenus();
}

void frmMain::SelectMap(int entry) {
    lists_->SelectMap(entry);
    zoom_->TakeFromMap();
    SetSizeText(MapSizeText(mapView_));
}

void frmMain::SelectIcon(int entry) {
    lists_->SelectIcon(entry);
    SetSizeText(IconSizeText(iconView_));
}

int frmMain::MapEntry() const {
    return ui_->ddMaps->currentIndex();
}

int frmMain::IconEntry() const {
    return ui_->ddIcons->currentIndex();
}

int frmMain::MapEntries() const {
    return ui_->ddMaps->count();
}

int frmMain::IconEntries() const {
    return ui_->ddIcons->count();
}

void frmMain::ClearDisplay() {
    wizardCommands_->Discard();
    state_.currentMap.reset();
    state_.currentIcon.reset();
    mapView_.Clear();
    iconView_.Clear();
    SetSizeText(QString());
    SetHeader(QString());
    EnableMenus();
}

void frmMain::EnableMenus() {
    const bool map = mapView_.Map() != nullptr;
    const bool icon = iconView_.objBitmap() != nullptr;
    const bool library = state_.objAtlavex != nullptr;
    for (QAction* const entry : {ui_->mBitmapScalingWizard, ui_->mBitmapDelete, ui_->mBitmapRename})
        entry->setEnabled(map);
    ui_->mnuTileExport->setEnabled(library && !state_.modified);
    for (QAction* const entry : {ui_->mFileSaveAtlavex, ui_->mFileSaveAtlavexAs, ui_->mnuMerge})
        entry->setEnabled(library);
    ui_->mnuMapMetaData->setEnabled(state_.currentMap != nullptr);
    ui_->mnuIconMetaData->setEnabled(state_.currentIcon != nullptr);
    ui_->mnuAtlavexProperties->setEnabled(state_.currentMap != nullptr || state_.currentIcon != nullptr);
    for (QAction* const entry : {ui_->mIconsDeleteIcon, ui_->mIconsRenameIcons, ui_->mIconsOffset})
        entry->setEnabled(icon);
}

void frmMain::ShowPage(int page) {
    ui_->tabAtlavex->setCurrentIndex(page);
}

void frmMain::LayOut() {
    mapView_.AdjustSize();
    iconView_.AdjustSize();
}

void frmMain::EnableZoom(bool enabled) {
    ui_->sldZoom->setEnabled(enabled);
}

void frmMain::ResetZoom() {
    zoom_->Reset();
}

void frmMain::StartScalingWizard() {
    wizardCommands_->StartScalingWizard();
}

void frmMain::StartWorldfileWizard(const std::shared_ptr<AtlavexMap>& map) {
    wizardCommands_->StartWorldfileWizard(map);
}

void frmMain::DiscardWizard() {
    wizardCommands_->Discard();
}
