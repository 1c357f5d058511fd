#include "app/MapIconCommands.h"

#include "app/EntryLists.h"
#include "app/ScaledFlag.h"
#include "app/Steps.h"
#include "base/ComponentError.h"
#include "dialogs/frmAtlavexProperties.h"
#include "dialogs/frmExport.h"
#include "dialogs/frmMetadata.h"
#include "dialogs/frmOffset.h"
#include "platform/modMessages.h"
#include "view/clsBitmapView.h"

namespace {

bool AskToDelete(EditorWindow& window, const std::string& name, const QString& what) {
    return AskYesNo(window.Widget(), QStringLiteral("Are you sure you want to delete '") +
                                         QString::fromStdString(name) + QStringLiteral("' ") + what);
}

} // namespace

void MapIconCommands::EnsureLibrary() {
    if (state_.objAtlavex == nullptr)
        state_.objAtlavex = window_.CreateLibrary();
}

void MapIconCommands::Import(const std::function<void()>& import) {
    try {
        const ComponentCall call(window_);
        import();
    } catch (const ComponentError& error) {
        ShowMessage(window_.Widget(), QString::number(error.Code()) + QStringLiteral(": ") +
                                          QString::fromStdString(error.Description()));
    }
}

void MapIconCommands::RenameMap() {
    if (state_.currentMap == nullptr)
        return;
    const auto map = state_.currentMap;
    const std::string before = map->Name();
    frmMetadata form(window_.Widget());
    form.ReduceToName();
    form.ShowMapMetaData(map);
    TakeMapEdit(map->Name() != before);
}

void MapIconCommands::MapMetaData() {
    if (state_.currentMap == nullptr)
        return;
    frmMetadata form(window_.Widget());
    form.ShowMapMetaData(state_.currentMap);
    TakeMapEdit(form.OK());
}

void MapIconCommands::TakeMapEdit(bool isChanged) {
    if (isChanged)
        state_.modified = true;
    window_.RefillMaps(window_.MapEntry());
    window_.ShowSizeOfPage();
}

void MapIconCommands::RenameIcon() {
    if (state_.currentIcon == nullptr)
        return;
    const auto icon = state_.currentIcon;
    const std::string before = icon->Name();
    frmMetadata form(window_.Widget());
    form.ReduceToName();
    form.ShowIconMetaData(icon);
    TakeIconEdit(icon->Name() != before);
}

void MapIconCommands::IconMetaData() {
    if (state_.currentIcon == nullptr)
        return;
    frmMetadata form(window_.Widget());
    form.ShowIconMetaData(state_.currentIcon);
    TakeIconEdit(form.OK());
}

void MapIconCommands::TakeIconEdit(bool isChanged) {
    if (isChanged)
        state_.modified = true;
    window_.RefillIcons(window_.IconEntry());
    window_.ShowSizeOfPage();
}

void MapIconCommands::DeleteMap() {
    if (state_.objAtlavex == nullptr || window_.MapEntry() < 0)
        return;
    AtlavexLibrary& library = *state_.objAtlavex;
    const std::string key = library.MapIdAt(LibraryPositionOf(window_.MapEntry()));
    if (!AskToDelete(window_, library.GetMap(key)->Name(), QStringLiteral("map?")))
        return;
    library.RemoveMap(key);
    Steps steps;
    SetScaled(state_, window_, library.MapCount() > 0);
    state_.currentMap.reset();
    steps.Do([&] { window_.MapView().Clear(); });
    steps.Do([&] { window_.DiscardWizard(); });
    steps.Do([&] { window_.RefillMaps(0); });
    SetModifiedAfterDeletion(steps);
    if (library.MapCount() == 0)
        window_.EnableZoom(false);
    window_.SetSizeText(QString());
    if (steps.HaveFailed())
        steps.Do([&] { window_.RefillMaps(-1); });
    window_.EnableMenus();
    steps.ThrowFirst();
}

void MapIconCommands::DeleteIcon() {
    if (state_.objAtlavex == nullptr || window_.IconEntry() < 0)
        return;
    AtlavexLibrary& library = *state_.objAtlavex;
    const std::string key = library.IconIdAt(LibraryPositionOf(window_.IconEntry()));
    if (!AskToDelete(window_, library.GetIcon(key)->Name(), QStringLiteral("Icon?")))
        return;
    library.RemoveIcon(key);
    Steps steps;
    state_.currentIcon.reset();
    steps.Do([&] { window_.IconView().Clear(); });
    steps.Do([&] { window_.RefillIcons(0); });
    SetModifiedAfterDeletion(steps);
    if (steps.HaveFailed())
        steps.Do([&] { window_.RefillIcons(-1); });
    window_.ShowSizeOfPage();
    window_.EnableMenus();
    steps.ThrowFirst();
}

void MapIconCommands::SetModifiedAfterDeletion(const Steps& steps) {
    // A deletion that leaves no maps or no icons clears the flag: meant.
    state_.modified =
        steps.HaveFailed() || (state_.objAtlavex->MapCount() > 0 && state_.objAtlavex->IconCount() > 0);
}

void MapIconCommands::IconOffset() {
    if (state_.currentIcon == nullptr) {
        ShowMessage(window_.Widget(), QStringLiteral("No icon selected"));
        return;
    }
    AtlavexIcon& icon = *state_.currentIcon;
    frmOffset form(window_.Widget());
    form.SetOffset(icon.OffsetX(), icon.OffsetY());
    form.exec();
    if (!form.OK())
        return;
    if (form.OffsetX() != icon.OffsetX()) {
        icon.SetOffsetX(form.OffsetX());
        state_.modified = true;
    }
    if (form.OffsetY() != icon.OffsetY()) {
        icon.SetOffsetY(form.OffsetY());
        state_.modified = true;
    }
}

void MapIconCommands::AtlavexProperties() {
    frmAtlavexProperties form(window_.Widget());
    form.exec();
    if (!form.OK())
        return;
    if (form.EncryptionKey() != state_.encryptionKey)
        state_.modified = true;
    state_.encryptionKey = form.EncryptionKey();
}

void MapIconCommands::TileExport() {
    if (state_.modified) {
        ShowMessage(window_.Widget(),
                    QStringLiteral("Current map must be saved before exporting tile images"));
        return;
    }
    if (state_.currentMap == nullptr)
        return;
    frmExport form(window_.Widget());
    form.Map = state_.currentMap;
    form.AroundExport = [this](const std::function<void()>& work) {
        const ComponentCall call(window_);
        work();
    };
    form.exec();
}
