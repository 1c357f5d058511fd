// The menus of the main window: from an entry to the command behind it.

#include "app/LibraryCommands.h"
#include "app/MapIconCommands.h"
#include "app/WizardCommands.h"
#include "app/frmMain.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmPreferences.h"
#include "platform/modHelp.h"
#include "ui_frmMain.h"

#include <QShortcut>

void frmMain::ConnectMenus() {
    const auto click = [this](QAction* entry, void (frmMain::*handler)()) {
        connect(entry, &QAction::triggered, this, handler);
    };
    click(ui_->mFileNewAtlavex, &frmMain::mFileNewAtlavex_Click);
    click(ui_->mFileOpenAtlavex, &frmMain::mFileOpenAtlavex_Click);
    click(ui_->mnuMerge, &frmMain::mnuMerge_Click);
    click(ui_->mnuAtlavexProperties, &frmMain::mnuAtlavexProperties_Click);
    click(ui_->mFileSaveAtlavex, &frmMain::mFileSaveAtlavex_Click);
    click(ui_->mFileSaveAtlavexAs, &frmMain::mFileSaveAtlavexAs_Click);
    click(ui_->mnuTileExport, &frmMain::mnuTileExport_Click);
    click(ui_->mFilePreferences, &frmMain::mFilePreferences_Click);
    click(ui_->mFileExit, &frmMain::mFileExit_Click);
    click(ui_->mBitmapNew, &frmMain::mBitmapNew_Click);
    click(ui_->mBitmapRename, &frmMain::mBitmapRename_Click);
    click(ui_->mBitmapDelete, &frmMain::mBitmapDelete_Click);
    click(ui_->mnuMapMetaData, &frmMain::mnuMapMetaData_Click);
    click(ui_->mBitmapScalingWizard, &frmMain::mBitmapScalingWizard_Click);
    click(ui_->mIconsNewIcon, &frmMain::mIconsNewIcon_Click);
    click(ui_->mIconsRenameIcons, &frmMain::mIconsRenameIcons_Click);
    click(ui_->mIconsDeleteIcon, &frmMain::mIconsDeleteIcon_Click);
    click(ui_->mnuIconMetaData, &frmMain::mnuIconMetaData_Click);
    click(ui_->mIconsOffset, &frmMain::mIconsOffset_Click);
    click(ui_->mHelpGuide, &frmMain::mHelpGuide_Click);
    click(ui_->mHelpAbout, &frmMain::mHelpAbout_Click);
}

void frmMain::SetShortcuts() {
    const auto standard = [](QAction* entry, QKeySequence::StandardKey key, const QKeySequence& otherwise) {
        const auto bound = QKeySequence::keyBindings(key);
        entry->setShortcuts(bound.isEmpty() ? QList<QKeySequence>{otherwise} : bound);
    };
    standard(ui_->mFileNewAtlavex, QKeySequence::New, Qt::CTRL | Qt::Key_N);
    standard(ui_->mFileOpenAtlavex, QKeySequence::Open, Qt::CTRL | Qt::Key_O);
    standard(ui_->mFileSaveAtlavex, QKeySequence::Save, Qt::CTRL | Qt::Key_S);
    standard(ui_->mFileSaveAtlavexAs, QKeySequence::SaveAs, Qt::CTRL | Qt::SHIFT | Qt::Key_S);
    standard(ui_->mFileExit, QKeySequence::Quit, Qt::CTRL | Qt::Key_Q);
    standard(ui_->mHelpGuide, QKeySequence::HelpContents, Qt::Key_F1);
}

void frmMain::mFileNewAtlavex_Click() {
    Run([this] {
        if (libraryCommands_->AskToSave())
            libraryCommands_->NewLibrary();
    });
}

void frmMain::mFileOpenAtlavex_Click() {
    Run([this] { libraryCommands_->OpenLibrary(); });
}

void frmMain::mnuMerge_Click() {
    Run([this] { libraryCommands_->MergeLibrary(); });
}

void frmMain::mnuAtlavexProperties_Click() {
    Run([this] { mapIconCommands_->AtlavexProperties(); });
}

void frmMain::mFileSaveAtlavex_Click() {
    Run([this] { libraryCommands_->SaveLibrary(); });
}

void frmMain::mFileSaveAtlavexAs_Click() {
    Run([this] { libraryCommands_->SaveLibraryAs(); });
}

void frmMain::mnuTileExport_Click() {
    Run([this] { mapIconCommands_->TileExport(); });
}

void frmMain::mFilePreferences_Click() {
    Run([this] { preferences_->exec(); });
}

void frmMain::mFileExit_Click() {
    bool mayExit = false;
    Run([&] { mayExit = libraryCommands_->AskToSave(); });
    if (mayExit)
        close();
}

void frmMain::mBitmapNew_Click() {
    Run([this] { mapIconCommands_->AddMap(); });
}

void frmMain::mBitmapRename_Click() {
    Run([this] { mapIconCommands_->RenameMap(); });
}

void frmMain::mBitmapDelete_Click() {
    Run([this] { mapIconCommands_->DeleteMap(); });
}

void frmMain::mnuMapMetaData_Click() {
    Run([this] { mapIconCommands_->MapMetaData(); });
}

void frmMain::mBitmapScalingWizard_Click() {
    Run([this] { wizardCommands_->StartScalingWizard(); });
}

void frmMain::mIconsNewIcon_Click() {
    Run([this] { mapIconCommands_->AddIcon(); });
}

void frmMain::mIconsRenameIcons_Click() {
    Run([this] { mapIconCommands_->RenameIcon(); });
}

void frmMain::mIconsDeleteIcon_Click() {
    Run([this] { mapIconCommands_->DeleteIcon(); });
}

void frmMain::mnuIconMetaData_Click() {
    Run([this] { mapIconCommands_->IconMetaData(); });
}

void frmMain::mIconsOffset_Click() {
    Run([this] { mapIconCommands_->IconOffset(); });
}

void frmMain::mHelpGuide_Click() {
    Run([this] { ShowHelp(this); });
}

void frmMain::mHelpAbout_Click() {
    Run([this] { frmAbout(this).exec(); });
}
