#pragma once

#include "component/AtlavexLibrary.h"

#include <QString>

#include <memory>

class IconList;
class MapList;
class MapZoom;
class QFileDialog;
class QWidget;
class StatusLine;
class TextLines;
struct EditorState;

/// The choices of the preferences that commands ask for.
struct PreferredTile {
    QString width;  ///< as in the lists of tile sizes: "256"
    QString height; ///< likewise
};

/// What the commands need of the main window itself.
class EditorWindow {
public:
    virtual ~EditorWindow() = default;

    /// The parent of message boxes and dialogs.
    virtual QWidget* Widget() = 0;
    /// The one system file dialog.
    virtual QFileDialog& FileDialog() = 0;
    virtual PreferredTile Tile() const = 0;
    /// A new, empty library whose progress this window shows.
    virtual std::shared_ptr<AtlavexLibrary> CreateLibrary() = 0;
    /// The rule of which menu entries are enabled.
    virtual void EnableMenus() = 0;
    virtual void ShowPage(int page) = 0; ///< 0: maps, 1: icons

    /// The state of the component call on the stack: hourglass, no new views, no further commands. Use
    /// ComponentCall.
    virtual void BeginCall() = 0;
    virtual void EndCall() = 0;
};

/// What the commands work on and with. All of it outlives them.
struct EditorParts {
    EditorState& state;
    EditorWindow& window;
    MapList& maps;
    IconList& icons;
    MapZoom& zoom;
    TextLines& lines;
    StatusLine& status;
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
