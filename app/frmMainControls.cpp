// The controls of the main window: lists, pages, zoom, viewers, keys and dropped files.

#include "app/EntryLists.h"
#include "app/InputFilters.h"
#include "app/LibraryCommands.h"
#include "app/MapIconCommands.h"
#include "app/MapZoom.h"
#include "app/StatusLine.h"
#include "app/TextLines.h"
#include "app/WizardCommands.h"
#include "app/frmMain.h"
#include "base/ComponentError.h"
#include "dialogs/frmPreferences.h"
#include "platform/modFields.h"
#include "platform/modMessages.h"
#include "ui_frmMain.h"
#include "view/KarvelViewer.h"

#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QShortcut>

namespace {

/// Whatever the other program proposes: it would delete a file that it believes to be moved.
void AcceptAsCopy(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(event.possibleActions().testFlag(Qt::CopyAction));
}

} // namespace

void frmMain::ConnectControls() {
    connect(ui_->ddMaps, &QComboBox::activated, this, &frmMain::ddMaps_Click);
    connect(ui_->ddIcons, &QComboBox::activated, this, &frmMain::ddIcons_Click);
    connect(ui_->tabAtlavex, &QTabWidget::currentChanged, this, &frmMain::tabAtlavex_Click);
    connect(ui_->sldZoom, &QSlider::valueChanged, this, &frmMain::sldZoom_Change);
    connect(ui_->hscrollMap, &QScrollBar::valueChanged, this, &frmMain::hscrollMap_Change);
    connect(ui_->vscrollMap, &QScrollBar::valueChanged, this, &frmMain::vscrollMap_Change);
    connect(ui_->hscrollIcon, &QScrollBar::valueChanged, this, &frmMain::hscrollIcon_Change);
    connect(ui_->vscrollIcon, &QScrollBar::valueChanged, this, &frmMain::vscrollIcon_Change);

    connect(ui_->viewerMap, &KarvelViewer::MouseMoved, this, &frmMain::viewerMap_MouseMove);
    connect(ui_->viewerMap, &KarvelViewer::Clicked, this, &frmMain::viewerMap_Click);
    connect(ui_->viewerMap, &KarvelViewer::Resized, this, &frmMain::viewerMap_Resize);
    connect(ui_->viewerMap, &KarvelViewer::ZoomTurned, this, &frmMain::viewerMap_Zoom);
    for (KarvelViewer* const viewer : {ui_->viewerMap, ui_->viewerIcon}) {
        connect(viewer, &KarvelViewer::Panned, this, &frmMain::viewer_Pan);
        connect(viewer, &KarvelViewer::Turned, this, &frmMain::viewer_Pan);
    }

    mapView_.OnViewChanged = [this] {
        wizardCommands_->ShowMarks();
        Quietly([this] { status_->Renew(); });
        Quietly([this] { TellMapPlace(); });
    };
    mapChoice_ = new MouseChoice(*ui_->ddMaps);
    iconChoice_ = new MouseChoice(*ui_->ddIcons);
    for (QWidget* const control : std::initializer_list<QWidget*>{ui_->ddMaps, ui_->ddIcons, ui_->sldZoom})
        GuardFromWheel(*control);
    arrowKeys_ = std::make_unique<ArrowKeys>(*this,
                                             std::vector<QWidget*>{ui_->viewerMap, ui_->hscrollMap,
                                                                   ui_->vscrollMap, ui_->viewerIcon,
                                                                   ui_->hscrollIcon, ui_->vscrollIcon},
                                             [this](const QKeyEvent& key) { Form_KeyDown(key); });
    const auto shortcut = [this](const QKeySequence& keys, void (frmMain::*handler)()) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, handler);
    };
    shortcut(Qt::CTRL | Qt::Key_0, &frmMain::ShowActualSize);
    shortcut(Qt::CTRL | Qt::Key_9, &frmMain::ShowWhole);
    shortcut(QKeySequence::Copy, &frmMain::CopyReadOut);
    shortcut(Qt::Key_Escape, &frmMain::Form_Escape);
    for (const Qt::Key enter : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(enter, ui_->viewerMap, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, this, &frmMain::viewerMap_Enter);
}

void frmMain::ddMaps_Click(int entry) {
    Run([this, entry] {
        if (state_.currentMap != nullptr && !state_.mapScaled) {
            if (entry == state_.rememberedMap)
                return;
            ShowMessage(this, QStringLiteral("Current map must be scaled first!"));
            maps_->MarkRemembered();
            return;
        }
        const auto before = state_.currentMap;
        maps_->Select(entry);
        status_->ShowStoredScaling();
        if (state_.currentMap != before)
            wizardCommands_->Discard();
        if (mapChoice_->IsByMouse())
            ui_->viewerMap->setFocus();
    });
}

void frmMain::ddIcons_Click(int entry) {
    Run([this, entry] {
        icons_->Select(entry);
        if (iconChoice_->IsByMouse())
            ui_->viewerIcon->setFocus();
    });
}

void frmMain::tabAtlavex_Click() {
    lines_->ShowSizeOfPage();
    EnableMenus();
}

void frmMain::sldZoom_Change() {
    Quietly([this] { zoom_->Follow(); });
}

void frmMain::hscrollMap_Change() {
    Quietly([this] { mapView_.ChangeHScroll(); });
}

void frmMain::vscrollMap_Change() {
    Quietly([this] { mapView_.ChangeVScroll(); });
}

void frmMain::hscrollIcon_Change() {
    Quietly([this] { iconView_.ChangeHScroll(); });
}

void frmMain::vscrollIcon_Change() {
    Quietly([this] { iconView_.ChangeVScroll(); });
}

void frmMain::viewerMap_MouseMove(const QPoint& position) {
    Quietly([&] {
        const std::optional<ImagePixel> pixel = MapPixelAt(position);
        if (pixel && !state_.busy && state_.mapScaled && !wizardCommands_->IsRunning())
            status_->ReadOut(*pixel);
        TellMapPlace();
    });
}

std::optional<ImagePixel> frmMain::MapPixelAt(const QPoint& position) const {
    try {
        return mapView_.PixelAt(position);
    } catch (const ComponentError&) {
        return std::nullopt; // beyond all coordinates
    }
}

/// For those who do not see the map: the pixel under the crosshair, else under the pointer, else in the
/// middle.
void frmMain::TellMapPlace() {
    if (state_.busy)
        return;
    std::optional<ImagePixel> pixel = wizardCommands_->Crosshair();
    const std::optional<QPoint> pointer = ui_->viewerMap->PointerPosition();
    if (!pixel && pointer)
        pixel = MapPixelAt(*pointer);
    if (!pixel)
        pixel = MapPixelAt(mapView_.MiddleOfImagePart());
    ui_->viewerMap->SetValueText(pixel ? status_->TextOf(*pixel) : QString());
}

void frmMain::viewerMap_Click(const QPoint& position) {
    Run([&] { ClickMap(position); });
    Quietly([this] { TellMapPlace(); });
}

void frmMain::ClickMap(const QPoint& position) {
    const bool isAwaited = wizardCommands_->IsRunning();
    if (state_.currentMap == nullptr && !isAwaited)
        return mapIconCommands_->AddMap();
    const std::optional<ImagePixel> pixel = MapPixelAt(position);
    if (!pixel)
        return; // a click beside the map
    if (isAwaited)
        wizardCommands_->WizardMapClick(*pixel);
    else if (!state_.mapScaled)
        wizardCommands_->StartScalingWizard();
    else
        status_->ReadOut(*pixel);
}

void frmMain::viewerMap_Enter() {
    Run([this] { wizardCommands_->PlacePoint(); });
    Quietly([this] { TellMapPlace(); });
}

void frmMain::Form_Escape() {
    Run([this] { wizardCommands_->CancelWaiting(); });
}

void frmMain::viewerMap_Resize() {
    Quietly([this] { zoom_->LimitSlider(); });
}

void frmMain::viewerMap_Zoom(int steps, const QPoint& position) {
    Quietly([&] { zoom_->TurnAbout(steps, position); });
}

void frmMain::viewer_Pan(const QPoint& delta) {
    Quietly([&] { (sender() == ui_->viewerMap ? mapView_ : iconView_).ScrollBy(-delta); });
}

void frmMain::ShowActualSize() {
    Quietly([this] { zoom_->ShowActualSize(); });
}

void frmMain::ShowWhole() {
    Quietly([this] { zoom_->ShowWhole(); });
}

void frmMain::Form_KeyDown(const QKeyEvent& key) {
    Quietly([&] {
        if (ui_->tabAtlavex->currentIndex() != 0)
            ScrollByKey(key, {iconView_.MapWidth(), iconView_.MapHeight()}, *ui_->hscrollIcon,
                        *ui_->vscrollIcon);
        else if (!wizardCommands_->ViewerKey(key))
            ScrollByKey(key, {mapView_.MapWidth(), mapView_.MapHeight()}, *ui_->hscrollMap, *ui_->vscrollMap);
        TellMapPlace();
    });
}

void frmMain::CopyReadOut() {
    QApplication::clipboard()->setText(ui_->lStatus->text());
}

void frmMain::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (TakesCommands() && urls.size() == 1 && urls.front().isLocalFile())
        AcceptAsCopy(*event);
}

void frmMain::dragMoveEvent(QDragMoveEvent* event) {
    AcceptAsCopy(*event);
}

void frmMain::dropEvent(QDropEvent* event) {
    AcceptAsCopy(*event);
    if (!event->isAccepted())
        return;
    const QString file = event->mimeData()->urls().front().toLocalFile();
    // Dialogs would hold up the program that the file comes from: it waits for the drop to end.
    QMetaObject::invokeMethod(
        this, [this, file] { OpenDropped(file); }, Qt::QueuedConnection);
}

void frmMain::OpenDropped(const QString& file) {
    Run([&] {
        if (file.endsWith(QStringLiteral(".Atlavex"), Qt::CaseInsensitive))
            libraryCommands_->OpenFile(file);
        else if (ui_->tabAtlavex->currentIndex() == 0)
            mapIconCommands_->AddMap(file);
        else
            mapIconCommands_->AddIcon(file);
    });
}
