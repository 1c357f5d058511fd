#include "app/FileChoosers.h"
#include "app/ImageNames.h"
#include "app/MapIconCommands.h"
#include "app/ScaledFlag.h"
#include "app/Steps.h"
#include "catalogue/modConst.h"
#include "component/ObjectTexts.h"
#include "dialogs/frmNewMap.h"
#include "platform/modGUID.h"
#include "platform/modMessages.h"

namespace {} // namespace

void MapIconCommands::AddMap() {
    AddMap([this] { return ChooseMapImage(window_); });
}

void MapIconCommands::AddMap(const QString& fileName) {
    AddMap([&fileName] { return std::optional(fileName); });
}

void MapIconCommands::AddMap(const FileChooser& choose) {
    if (!MayAddMap())
        return;
    // A worldfile belongs to the map it was accepted for, and to no later one.
    state_.pendingWorldfile.clear();
    window_.SetHeader(QString());
    if (const auto fileName = choose())
        AddMapFrom(*fileName);
    window_.EnableMenus();
}

bool MapIconCommands::MayAddMap() {
    if (state_.currentMap == nullptr || state_.mapScaled)
        return true;
    ShowMessage(window_.Widget(), QStringLiteral("You must scale the current map before adding a new map"));
    return false;
}

void MapIconCommands::AddMapFrom(const QString& fileName) {
    const auto settings = AskForMapSettings(ProposedName(fileName));
    if (!settings)
        return;
    EnsureLibrary();
    const auto map = ImportMap(fileName, *settings);
    if (map == nullptr)
        return;
    TakeNewMap(map, *settings);
    AskForWorldfile(fileName);
    StartScaling(map);
}

std::optional<MapIconCommands::NewMapSettings>
MapIconCommands::AskForMapSettings(const QString& proposedName) {
    frmNewMap form(window_.Widget());
    const PreferredTile tile = window_.Tile();
    form.SetTile(tile.width, tile.height);
    form.SetName(proposedName);
    form.exec();
    if (!form.OK())
        return std::nullopt;
    return NewMapSettings{form.Name(), form.Description(), form.TileWidth(), form.TileHeight()};
}

std::shared_ptr<AtlavexMap> MapIconCommands::ImportMap(const QString& fileName,
                                                       const NewMapSettings& settings) {
    std::shared_ptr<AtlavexMap> map;
    Import([&] {
        map = state_.objAtlavex->AddMapFromImageFile(fileName.toStdString(), settings.name.toStdString(),
                                                     settings.tileWidth, settings.tileHeight);
    });
    return map;
}

void MapIconCommands::TakeNewMap(const std::shared_ptr<AtlavexMap>& map, const NewMapSettings& settings) {
    state_.modified = true; // whatever follows: the map is in the library
    Steps steps;
    steps.Do([&] { map->SetIdentifier(CreateGUID()); });
    steps.Do([&] {
        DescribeNewObject(*map, settings.name.toStdString(), settings.description.toStdString(),
                          ApplicationText());
    });
    steps.Do([&] { window_.RefillMaps(state_.objAtlavex->MapCount() - 1); });
    if (state_.currentMap != map)
        steps.Do([&] { window_.RefillMaps(-1); });
    // The wizard of the map shown until now has no map any more.
    steps.Do([&] { window_.DiscardWizard(); });
    SetScaled(state_, window_, false);
    window_.ShowPage(0);
    steps.Do([&] { window_.LayOut(); });
    steps.ThrowFirst();
}

void MapIconCommands::AskForWorldfile(const QString& fileName) {
    const QString worldfile = WorldfileFor(fileName);
    if (!worldfile.isEmpty() && IsPlainFile(worldfile) &&
        AskYesNo(window_.Widget(), QStringLiteral("Worldfile found. Do you want to use it?")))
        state_.pendingWorldfile = worldfile;
}

void MapIconCommands::StartScaling(const std::shared_ptr<AtlavexMap>& map) {
    if (state_.pendingWorldfile.isEmpty()) {
        window_.StartScalingWizard();
        return;
    }
    window_.StartWorldfileWizard(map);
    // The worldfile sets the flag alone; the status line is this command's.
    if (state_.mapScaled)
        SetScaled(state_, window_, true);
}
