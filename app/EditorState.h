#pragma once

#include "component/AtlavexLibrary.h"

#include <QString>

#include <cstdint>
#include <memory>

/// What is open in the editor and what has been done to it. The commands work on it; the window shows it.
struct EditorState {
    /// The open library; nothing after New, until a map or icon is added or a file is opened.
    std::shared_ptr<AtlavexLibrary> objAtlavex;
    std::shared_ptr<AtlavexMap> currentMap;
    std::shared_ptr<AtlavexIcon> currentIcon;
    std::int16_t rememberedMap = -1;  ///< the entry of ddMaps last accepted
    std::int16_t rememberedIcon = -1; ///< the entry of ddIcons last accepted
    bool mapScaled = false;           ///< whether the current map is georeferenced: the editor's own flag
    bool modified = false;            ///< whether there is something to save
    QString fileName;                 ///< full path of the file last opened or saved; empty for a new library
    QString encryptionKey;            ///< of the open library; empty: none
    QString pendingWorldfile;         ///< a worldfile that the user accepted for the map just added
    bool diagnosticMode = false;      ///< extra counters in the progress dialog
    bool busy = false; ///< a call of the component is on the stack: no further command may start
};
