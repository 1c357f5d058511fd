#pragma once

#include "app/EditorState.h"
#include "app/EditorWindow.h"

#include <functional>
#include <optional>

class Steps;

/// What the Map and Icons menus do with what is in the library, the properties of the library, and the tile
/// export. A component's error leaves every command as a ComponentError, with pointer and window restored;
/// only a failed import is told by the command itself, with its number.
class MapIconCommands {
public:
    MapIconCommands(EditorState& state, EditorWindow& window) : state_(state), window_(window) {}

    void AddMap();
    /// The same for an image file that was named otherwise than in the file dialog.
    void AddMap(const QString& fileName);
    void AddIcon();
    void AddIcon(const QString& fileName);

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
    /// Names the file; nothing when the user gave none.
    using FileChooser = std::function<std::optional<QString>()>;
    struct NewMapSettings {
        QString name;
        QString description;
        std::int32_t tileWidth = 0;  ///< pixels
        std::int32_t tileHeight = 0; ///< pixels
    };

    // AddMap.cpp
    void AddMap(const FileChooser& choose);
    bool MayAddMap();
    void AddMapFrom(const QString& fileName);
    std::optional<NewMapSettings> AskForMapSettings(const QString& proposedName);
    std::shared_ptr<AtlavexMap> ImportMap(const QString& fileName, const NewMapSettings& settings);
    /// Makes the map that has just been added current. After a failure it is in the library all the same, and
    /// no wizard may start.
    void TakeNewMap(const std::shared_ptr<AtlavexMap>& map, const NewMapSettings& settings);
    void AskForWorldfile(const QString& fileName);
    void StartScaling(const std::shared_ptr<AtlavexMap>& map);

    // AddIcon.cpp
    void AddIcon(const FileChooser& choose);
    void AddIconFrom(const QString& fileName);
    std::optional<NewMapSettings> AskForIconSettings(const QString& proposedName);
    std::shared_ptr<AtlavexIcon> ImportIcon(const QString& fileName, const QString& name);

    void EnsureLibrary();
    /// Runs an import under the hourglass; tells its number and sentence when it fails.
    void Import(const std::function<void()>& import);
    /// After the metadata dialog: the lists show what it wrote, at the entry that was selected.
    void TakeMapEdit(bool isChanged);
    void TakeIconEdit(bool isChanged);
    /// `steps`: what followed the removal until now.
    void SetModifiedAfterDeletion(const Steps& steps);

    EditorState& state_;
    EditorWindow& window_;
};
