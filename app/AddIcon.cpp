#include "app/FileChoosers.h"
#include "app/ImageNames.h"
#include "app/MapIconCommands.h"
#include "app/Steps.h"
#include "component/ObjectTexts.h"
#include "dialogs/frmNewMap.h"

namespace {

constexpr const char* NewIconVersion = "1.0";

} // namespace

void MapIconCommands::AddIcon() {
    AddIcon([this] { return ChooseIconImage(window_); });
}

void MapIconCommands::AddIcon(const QString& fileName) {
    AddIcon([&fileName] { return std::optional(fileName); });
}

void MapIconCommands::AddIcon(const FileChooser& choose) {
    if (const auto fileName = choose())
        AddIconFrom(*fileName);
    window_.EnableMenus();
}

void MapIconCommands::AddIconFrom(const QString& fileName) {
    const auto settings = AskForIconSettings(ProposedName(fileName));
    if (!settings)
        return;
    EnsureLibrary();
    const auto icon = ImportIcon(fileName, settings->name);
    if (icon == nullptr)
        return;
    state_.modified = true; // whatever follows: the icon is in the library
    Steps steps;
    steps.Do([&] { window_.RefillIcons(state_.objAtlavex->IconCount() - 1); });
    if (state_.currentIcon != icon)
        steps.Do([&] { window_.RefillIcons(-1); });
    steps.Do([&] {
        DescribeNewObject(*icon, settings->name.toStdString(), settings->description.toStdString(),
                          NewIconVersion);
    });
    window_.ShowPage(1);
    steps.Do([&] { window_.LayOut(); });
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

std::shared_ptr<AtlavexIcon> MapIconCommands::ImportIcon(const QString& fileName, const QString& name) {
    std::shared_ptr<AtlavexIcon> icon;
    Import(
        [&] { icon = state_.objAtlavex->AddIconFromImageFile(fileName.toStdString(), name.toStdString()); });
    return icon;
}
