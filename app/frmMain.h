#pragma once

#include "app/EditorState.h"
#include "app/EditorWindow.h"
#include "view/clsBitmapView.h"

#include <QMainWindow>

#include <functional>
#include <memory>
#include <optional>

class ArrowKeys;
class IconList;
class LibraryCommands;
class MapIconCommands;
class MapList;
class MapZoom;
class MouseChoice;
class ProgressDisplay;
class StatusLine;
class TextLines;
class WizardCommands;
class frmPreferences;

namespace Ui {
class frmMain;
}

/// The one main window: its controls, the handlers of its menus and controls, and which menu entries are
/// enabled. What a command does stands in LibraryCommands, MapIconCommands and WizardCommands.
class frmMain : public QMainWindow, private EditorWindow {
    Q_OBJECT

public:
    using LibraryMaker = std::function<std::shared_ptr<AtlavexLibrary>(const LibraryOptions&)>;

    explicit frmMain(bool diagnosticMode = false, LibraryMaker makeLibrary = CreateAtlavexLibrary);
    ~frmMain() override;

    /// To be called once, before the window is shown. `commandLine` is empty or the path of a library file,
    /// possibly in double quotes, which is loaded.
    void Form_Load(const QString& commandLine);

    const EditorState& State() const { return state_; }

protected:
    /// Form_Unload: asks to save; the window stays when the user cancels.
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // Menus (frmMainMenus.cpp).
    void ConnectMenus();
    void SetShortcuts();
    void mFileNewAtlavex_Click();
    void mFileOpenAtlavex_Click();
    void mnuMerge_Click();
    void mnuAtlavexProperties_Click();
    void mFileSaveAtlavex_Click();
    void mFileSaveAtlavexAs_Click();
    void mnuTileExport_Click();
    void mFilePreferences_Click();
    void mFileExit_Click();
    void mBitmapNew_Click();
    void mBitmapRename_Click();
    void mBitmapDelete_Click();
    void mnuMapMetaData_Click();
    void mBitmapScalingWizard_Click();
    void mIconsNewIcon_Click();
    void mIconsRenameIcons_Click();
    void mIconsDeleteIcon_Click();
    void mnuIconMetaData_Click();
    void mIconsOffset_Click();
    void mHelpGuide_Click();
    void mHelpAbout_Click();

    // Controls (frmMainControls.cpp).
    void ConnectControls();
    void ddMaps_Click(int entry);
    void ddIcons_Click(int entry);
    void tabAtlavex_Click();
    void sldZoom_Change();
    void hscrollMap_Change();
    void vscrollMap_Change();
    void hscrollIcon_Change();
    void vscrollIcon_Change();
    void viewerMap_MouseMove(const QPoint& position);
    void viewerMap_Click(const QPoint& position);
    void viewerMap_Enter();
    void Form_Escape();
    void viewerMap_Resize();
    void viewerMap_Zoom(int steps, const QPoint& position);
    void viewer_Pan(const QPoint& delta);
    void ShowActualSize();
    void ShowWhole();
    void Form_KeyDown(const QKeyEvent& key);
    void CopyReadOut();
    void OpenDropped(const QString& file);

    /// Whether none is running.
    bool TakesCommands() const;
    /// Runs a command: nothing when one is running, a component's error shown, the menus right afterwards,
    /// and so the prompt of a wizard that waits.
    void Run(const std::function<void()>& command);
    /// What a command has done outlives the program from here on.
    void KeepUnsavedWork() noexcept;
    /// Runs what must stay silent when it fails, and is no command: mouse moves, scrolling, layout.
    void Quietly(const std::function<void()>& handler) noexcept;
    void MakeCommands();
    void LoadFromCommandLine(const QString& commandLine);
    void ClickMap(const QPoint& position);
    /// The preferred one when it is there; empty: the user's cache folder.
    std::string ScratchFolder() const;
    /// The map's pixel at a position of its viewer; nothing beside the map.
    std::optional<ImagePixel> MapPixelAt(const QPoint& position) const;
    void TellMapPlace();

    // What the commands need of this window.
    QWidget* Widget() override { return this; }
    QFileDialog& FileDialog() override { return *fileDialog_; }
    PreferredTile Tile() const override;
    std::shared_ptr<AtlavexLibrary> CreateLibrary() override;
    void EnableMenus() override;
    void ShowPage(int page) override;
    void BeginCall() override;
    void EndCall() override;

    EditorState state_;
    bool keepingFailed_ = false;
    bool running_ = false; ///< a command is on the stack, perhaps with a box or a dialog open
    LibraryMaker makeLibrary_;
    std::unique_ptr<Ui::frmMain> ui_;
    clsBitmapView mapView_;
    clsBitmapView iconView_;
    QFileDialog* fileDialog_ = nullptr;     ///< owned by this window
    frmPreferences* preferences_ = nullptr; ///< owned by this window
    std::unique_ptr<ArrowKeys> arrowKeys_;
    MouseChoice* mapChoice_ = nullptr;  ///< owned by its list
    MouseChoice* iconChoice_ = nullptr; ///< likewise
    std::unique_ptr<ProgressDisplay> progress_;
    std::unique_ptr<MapZoom> zoom_;
    std::unique_ptr<TextLines> lines_;
    std::unique_ptr<StatusLine> status_;
    std::unique_ptr<MapList> maps_;
    std::unique_ptr<IconList> icons_;
    std::unique_ptr<LibraryCommands> libraryCommands_;
    std::unique_ptr<MapIconCommands> mapIconCommands_;
    std::unique_ptr<WizardCommands> wizardCommands_;
};
