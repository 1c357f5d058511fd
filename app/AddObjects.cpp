// Maps and icons that are added to the library from image files.

#include "app/EditorState.h"
#include "app/EntryLists.h"
#include "app/FileChoosers.h"
#include "app/ImageNames.h"
#include "app/MapIconCommands.h"
#include "app/StatusLine.h"
#include "app/Steps.h"
#include "app/TextLines.h"
#include "app/WizardCommands.h"
#include "base/ComponentError.h"
#include "catalogue/modConst.h"
#include "component/ObjectTexts.h"
#include "dialogs/frmNewMap.h"
#include "platform/modGUID.h"
#include "platform/modMessages.h"
#include "view/clsBitmapView.h"

namespace {

constexpr const char* NewIconVersion = "1.0";

} // namespace

template <typename Import>
auto MapIconCommands::RunImport(const Import& import) {
    if (state_.objAtlavex == nullptr)
        state_.objAtlavex = window_.CreateLibrary();
    decltype(import(*state_.objAtlavex)) object;
    try {
        const ComponentCall call(window_);
        object = import(*state_.objAtlavex);
    } catch (const ComponentError& error) {
        ShowMessage(window_.Widget(), QString::number(error.Code()) + QStringLiteral(": ") +
                                          QString::fromStdString(error.Description()));
    }
    return object;
}

template <typename Object>
void MapIconCommands::SelectNew(EntryList<Object>& list, const std::shared_ptr<Object>& object,
                                Steps& steps) {
    steps.Do([&] { list.Refill(list.LastEntry()); });
    if (list.Current() != object)
        steps.Do([&] { list.Refill(-1); });
}

void MapIconCommands::LayOut() {
    maps_.View().AdjustSize();
    icons_.View().AdjustSize();
}

void MapIconCommands::AddMap(const std::optional<QString>& fileName) {
    if (!MayAddMap())
        return;
    // A worldfile belongs to the map it was accepted for, and to no later one.
    state_.pendingWorldfile.clear();
    lines_.SetHeader(QString());
    if (const auto file = fileName ? fileName : ChooseMapImage(window_))
        AddMapFrom(*file);
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
    const auto map = RunImport([&](AtlavexLibrary& library) {
        return library.AddMapFromImageFile(fileName.toStdString(), settings->name.toStdString(),
                                           settings->tileWidth, settings->tileHeight);
    });
    if (map == nullptr)
        return;
    ShowNewMap(map, *settings);
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

void MapIconCommands::ShowNewMap(const std::shared_ptr<AtlavexMap>& map, const NewMapSettings& settings) {
    state_.modified = true; // whatever follows: the map is in the library
    Steps steps;
    steps.Do([&] { map->SetIdentifier(CreateGUID()); });
    steps.Do([&] {
        DescribeNewObject(*map, settings.name.toStdString(), settings.description.toStdString(),
                          ApplicationText());
    });
    SelectNew(maps_, map, steps);
    // The wizard of the map shown until now has no map any more.
    steps.Do([&] { wizard_.Discard(); });
    status_.SetScaled(false);
    window_.ShowPage(0);
    steps.Do([&] { LayOut(); });
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
        wizard_.StartScalingWizard();
        return;
    }
    wizard_.StartWorldfileWizard(map);
    // The worldfile sets the flag alone; the status line is this command's.
    if (state_.mapScaled)
        status_.SetScaled(true);
}

void MapIconCommands::AddIcon(const std::optional<QString>& fileName) {
    if (const auto file = fileName ? fileName : ChooseIconImage(window_))
        AddIconFrom(*file);
    window_.EnableMenus();
}

void MapIconCommands::AddIconFrom(const QString& fileName) {
    const auto settings = AskForIconSettings(ProposedName(fileName));
    if (!settings)
        return;
    const auto icon = RunImport([&](AtlavexLibrary& library) {
        return library.AddIconFromImageFile(fileName.toStdString(), settings->name.toStdString());
    });
    if (icon == nullptr)
        return;
    state_.modified = true; // whatever follows: the icon is in the library
    Steps steps;
    SelectNew(icons_, icon, steps);
    steps.Do([&] {
        DescribeNewObject(*icon, settings->name.toStdString(), settings->description.toStdString(),
                          NewIconVersion);
    });
    window_.ShowPage(1);
    steps.Do([&] { LayOut(); });
    steps.ThrowFirst();
}

std::optional<MapIconCommands::NewMapSettings>
MapIconCommands::AskForIconSettings(const QString& proposedName) {
    frmNewMap form(window_.Widget());
    form.SetName(proposedName);
    form.ReduceToIcon();
    form.exec();
    if (!form.OK())
        return std::nullopt;
    return NewMapSettings{form.Name(), form.Description()};
}
