#pragma once

#include "app/EditorWindow.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class AtlavexIcon;
class AtlavexMap;
class Steps;
class WizardCommands;
template <typename Object>
class EntryList;

/// What the Map and Icons menus do with what is in the library, the properties of the library, and the tile
/// export. A component's error leaves every command as a ComponentError, with pointer and window restored;
/// only a failed import is told by the command itself, with its number.
class MapIconCommands {
public:
    MapIconCommands(const EditorParts& parts, WizardCommands& wizard);

    /// Adds the image file of this name; without one asks for it.
    void AddMap(const std::optional<QString>& fileName = std::nullopt);
    void AddIcon(const std::optional<QString>& fileName = std::nullopt);

    void RenameMap();
    void RenameIcon();
    void DeleteMap();
    void DeleteIcon();
    void IconOffset();
    void MapMetaData();
    void IconMetaData();

    void AtlavexProperties();
    void TileExport();

private:
    struct NewMapSettings {
        QString name;
        QString description;
        std::int32_t tileWidth = 0;  ///< pixels
        std::int32_t tileHeight = 0; ///< pixels
    };

    // AddObjects.cpp
    bool MayAddMap();
    void AddMapFrom(const QString& fileName);
    std::optional<NewMapSettings> AskForMapSettings(const QString& proposedName);
    /// Makes the map that has just been added current. After a failure it is in the library all the same, and
    /// no wizard may start.
    void ShowNewMap(const std::shared_ptr<AtlavexMap>& map, const NewMapSettings& settings);
    void AskForWorldfile(const QString& fileName);
    void StartScaling(const std::shared_ptr<AtlavexMap>& map);
    void AddIconFrom(const QString& fileName);
    std::optional<NewMapSettings> AskForIconSettings(const QString& proposedName);
    /// Runs an import into the library, which is made if there is none, under the hourglass; tells its number
    /// and sentence when it fails, and gives nothing then.
    template <typename Import>
    auto RunImport(const Import& import);
    template <typename Object>
    void SelectNew(EntryList<Object>& list, const std::shared_ptr<Object>& object, Steps& steps);
    void LayOut();

    template <typename Object>
    void Rename(EntryList<Object>& list);
    template <typename Object>
    void EditMetaData(EntryList<Object>& list);
    /// After the metadata dialog: the list shows what it wrote, at the entry that was selected.
    template <typename Object>
    void ShowEdit(EntryList<Object>& list, bool isChanged);
    /// `steps`: what followed the removal until now.
    template <typename Object>
    void ShowDeletion(EntryList<Object>& list, Steps& steps);
    bool AskToDelete(const std::string& name, const QString& what);

    EditorState& state_;
    EditorWindow& window_;
    MapList& maps_;
    IconList& icons_;
    MapZoom& zoom_;
    TextLines& lines_;
    StatusLine& status_;
    WizardCommands& wizard_;
};
