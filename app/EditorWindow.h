#pragma once

#include "component/AtlavexLibrary.h"

#include <QString>

#include <memory>

class QFileDialog;
class QWidget;
class clsBitmapView;

/// The choices of the preferences that commands ask for.
struct PreferredTile {
    QString width;  ///< as in the lists of tile sizes: "256"
    QString height; ///< likewise
};

/// What the commands ask of the main window. The window's lists count from 0, the library's positions from 1.
class EditorWindow {
public:
    virtual ~EditorWindow() = default;

    /// The parent of message boxes and dialogs.
    virtual QWidget* Widget() = 0;
    /// The one system file dialog.
    virtual QFileDialog& FileDialog() = 0;
    virtual clsBitmapView& MapView() = 0;
    virtual clsBitmapView& IconView() = 0;
    virtual PreferredTile Tile() const = 0;

    /// A new, empty library whose progress this window shows.
    virtual std::shared_ptr<AtlavexLibrary> CreateLibrary() = 0;

    virtual void SetTitle(const QString& name) = 0;    ///< the window title: the program's name and this one
    virtual void SetHeader(const QString& text) = 0;   ///< lHeader
    virtual void SetStatus(const QString& text) = 0;   ///< lStatus
    virtual void SetSizeText(const QString& text) = 0; ///< lbSize
    /// lbSize says the size of what the visible page shows.
    virtual void ShowSizeOfPage() = 0;

    /// Refills ddMaps (ddIcons) with the names in library order and selects the entry, which becomes current
    /// and is shown; -1 or an entry that is not there: none is selected and the current object stays as it
    /// is. Says nothing of the scaled flag and asks nothing; what cannot be shown is said
    /// and not selected. Ends with EnableMenus.
    virtual void RefillMaps(int select) = 0;
    virtual void RefillIcons(int select) = 0;
    /// Makes the entry current and shows it, as if it had been chosen, without the rule about unscaled maps.
    virtual void SelectMap(int entry) = 0;
    virtual void SelectIcon(int entry) = 0;
    virtual int MapEntry() const = 0;  ///< the entry selected in ddMaps, -1: none
    virtual int IconEntry() const = 0; ///< the entry selected in ddIcons, -1: none
    virtual int MapEntries() const = 0;
    virtual int IconEntries() const = 0;

    /// Makes no map and no icon current and empties both views, lbSize and lHeader; a running scaling wizard
    /// is given up.
    virtual void ClearDisplay() = 0;
    /// The rule of which menu entries are enabled.
    virtual void EnableMenus() = 0;
    virtual void ShowPage(int page) = 0; ///< 0: maps, 1: icons
    virtual void LayOut() = 0;           ///< both views lay themselves out
    virtual void EnableZoom(bool enabled) = 0;
    virtual void ResetZoom() = 0; ///< 100 %, where no map is shown

    /// The state of the component call on the stack: hourglass, no new views, no further commands. Use
    /// ComponentCall.
    virtual void BeginCall() = 0;
    virtual void EndCall() = 0;

    // The scaling wizard.
    virtual void StartScalingWizard() = 0;
    virtual void StartWorldfileWizard(const std::shared_ptr<AtlavexMap>& map) = 0;
    /// Gives up a running wizard without a word and empties lHeader.
    virtual void DiscardWizard() = 0;
};

/// For as long as a long call of the component runs; ends in good order on every way out.
class ComponentCall {
public:
    explicit ComponentCall(EditorWindow& window) : window_(window) { window_.BeginCall(); }
    ~ComponentCall() { window_.EndCall(); }
    ComponentCall(const ComponentCall&) = delete;
    ComponentCall& operator=(const ComponentCall&) = delete;

private:
    EditorWindow& window_;
};
