#include "app/frmMain.h"

#include "app/EntryLists.h"
#include "app/InputFilters.h"
#include "app/LibraryCommands.h"
#include "app/MapIconCommands.h"
#include "app/MapZoom.h"
#include "app/ProgressDisplay.h"
#include "app/StatusLine.h"
#include "app/TextLines.h"
#include "app/WizardCommands.h"
#include "app/modResize.h"
#include "base/StandardErrors.h"
#include "dialogs/frmPreferences.h"
#include "platform/modMessages.h"
#include "ui_frmMain.h"
#include "view/KarvelViewer.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QScopedValueRollback>

#include <iostream>
#include <utility>

namespace {

/// Milliseconds before a draft is shown. What comes on top, the draft itself and the painting, is about as
/// much again, and the window should answer within 50.
constexpr int ViewPatience = 20;

} // namespace

frmMain::frmMain(bool diagnosticMode, LibraryMaker makeLibrary)
    : makeLibrary_(std::move(makeLibrary)), ui_(std::make_unique<Ui::frmMain>()),
      fileDialog_(new QFileDialog(this)), preferences_(new frmPreferences(this)) {
    state_.diagnosticMode = diagnosticMode;
    ui_->setupUi(this);
    fileDialog_->setObjectName(QStringLiteral("FileDialog"));
    progress_ = std::make_unique<ProgressDisplay>(*this, state_);
    zoom_ = std::make_unique<MapZoom>(*ui_->sldZoom, *ui_->lbZoomPercentage, mapView_);
    lines_ = std::make_unique<TextLines>(
        TextLines::Controls{*this, *ui_->lHeader, *ui_->lbSize, *ui_->tabAtlavex, mapView_, iconView_});
    status_ = std::make_unique<StatusLine>(*ui_->lStatus, state_, mapView_, [this] {
        return preferences_->Radians() ? AngleUnit::Radians : AngleUnit::Degrees;
    });
    maps_ =
        std::make_unique<MapList>(state_, MapList::Controls{*ui_->ddMaps, mapView_, *lines_, *this}, *zoom_);
    icons_ = std::make_unique<IconList>(state_, IconList::Controls{*ui_->ddIcons, iconView_, *lines_, *this});
    MakeCommands();
}

void frmMain::MakeCommands() {
    const EditorParts parts{state_, *this, *maps_, *icons_, *zoom_, *lines_, *status_};
    wizardCommands_ = std::make_unique<WizardCommands>(parts);
    libraryCommands_ = std::make_unique<LibraryCommands>(parts, *wizardCommands_);
    mapIconCommands_ = std::make_unique<MapIconCommands>(parts, *wizardCommands_);
}

frmMain::~frmMain() {
    // The views hold maps of the library and use the viewers, which go with the window's own parts.
    mapView_.Clear();
    iconView_.Clear();
}

void frmMain::Form_Load(const QString& commandLine) {
    if (!state_.diagnosticMode)
        HoldSizeLimits(*this);
    iconView_.SetScrollBars(ui_->hscrollIcon, ui_->vscrollIcon);
    iconView_.SetViewer(ui_->viewerIcon);
    mapView_.SetScrollBars(ui_->hscrollMap, ui_->vscrollMap);
    mapView_.SetViewer(ui_->viewerMap);
    ui_->tabAtlavex->setCurrentIndex(0);
    ConnectMenus();
    SetShortcuts();
    ConnectControls();
    EnableMenus();
    lines_->SetHeader(QStringLiteral("Header"));
    ui_->viewerMap->setFocus(); // arrow keys on the tabs would turn the page as well
    LoadFromCommandLine(commandLine);
}

void frmMain::LoadFromCommandLine(const QString& commandLine) {
    QString file = commandLine;
    if (file.startsWith(QLatin1Char('"'))) {
        file.chop(1);
        file.remove(0, 1);
    }
    if (file.isEmpty())
        return;
    Run([&] { libraryCommands_->LoadLibrary(QDir::current().absoluteFilePath(file)); });
}

bool frmMain::TakesCommands() const {
    // Drops and the end of the session reach a window also behind its own boxes and dialogs.
    return !running_;
}

void frmMain::Run(const std::function<void()>& command) {
    if (!TakesCommands())
        return;
    const QScopedValueRollback running(running_, true);
    try {
        command();
    } catch (const std::exception& error) {
        ShowMessage(this, QString::fromStdString(SentenceOf(error)));
    }
    KeepUnsavedWork();
    wizardCommands_->ShowPrompt();
    EnableMenus();
}

void frmMain::KeepUnsavedWork() noexcept {
    try {
        if (state_.objAtlavex != nullptr)
            state_.objAtlavex->KeepUnsavedWork();
        keepingFailed_ = false;
    } catch (const std::exception& error) {
        // No command fails for it; whoever looks there is told, once.
        if (!std::exchange(keepingFailed_, true))
            std::cerr << "quorvant-studio: Unsaved work is not kept for the case of a crash. "
                      << SentenceOf(error) << std::endl;
    }
}

void frmMain::Quietly(const std::function<void()>& handler) noexcept {
    try {
        handler();
    } catch (const std::exception&) {
        // What is shown stays as it was; every command that reads the same will say what is wrong.
        return;
    }
}

void frmMain::closeEvent(QCloseEvent* event) {
    // The window manager asks a disabled window, too.
    event->setAccepted(false);
    if (!TakesCommands())
        return;
    bool mayClose = false;
    Run([&] { mayClose = libraryCommands_->AskToSave(); });
    // The limits go even when the window stays: a window that was to be closed is no longer held.
    if (!state_.diagnosticMode)
        DropSizeLimits(*this);
    event->setAccepted(mayClose);
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

PreferredTile frmMain::Tile() const {
    return {preferences_->TileWidth(), preferences_->TileHeight()};
}

std::string frmMain::ScratchFolder() const {
    const QString folder = preferences_->TemporaryFolder();
    return QFileInfo(folder).isDir() ? folder.toStdString() : std::string();
}

std::shared_ptr<AtlavexLibrary> frmMain::CreateLibrary() {
    LibraryOptions options;
    options.viewPatience = ViewPatience;
    options.scratchFolder = ScratchFolder();
    options.keepUnsavedWork = true;
    std::shared_ptr<AtlavexLibrary> library = makeLibrary_(options);
    progress_->Follow(*library);
    return library;
}

void frmMain::BeginCall() {
    // The folder may have been chosen, or have come or gone, since the library was made.
    if (state_.objAtlavex != nullptr)
        state_.objAtlavex->SetScratchFolder(ScratchFolder());
    state_.busy = true;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    mapView_.SetBusy(true);
    iconView_.SetBusy(true);
}

void frmMain::EndCall() {
    QApplication::restoreOverrideCursor();
    state_.busy = false;
    Quietly([this] { mapView_.SetBusy(false); });
    Quietly([this] { iconView_.SetBusy(false); });
    Quietly([this] { zoom_->LimitSlider(); });
}
