#include "app/MapIconCommands.h"

#include "app/EditorState.h"
#include "app/EntryLists.h"
#include "app/MapZoom.h"
#include "app/StatusLine.h"
#include "app/Steps.h"
#include "app/TextLines.h"
#include "app/WizardCommands.h"
#include "dialogs/frmAtlavexProperties.h"
#include "dialogs/frmExport.h"
#include "dialogs/frmMetadata.h"
#include "dialogs/frmOffset.h"
#include "platform/modMessages.h"

namespace {

void ShowMetaData(frmMetadata& form, const std::shared_ptr<AtlavexMap>& map) {
    form.ShowMapMetaData(map);
}

void ShowMetaData(frmMetadata& form, const std::shared_ptr<AtlavexIcon>& icon) {
    form.ShowIconMetaData(icon);
}

} // namespace

MapIconCommands::MapIconCommands(const EditorParts& parts, WizardCommands& wizard)
    : state_(parts.state), window_(parts.window), maps_(parts.maps), icons_(parts.icons), zoom_(parts.zoom),
      lines_(parts.lines), status_(parts.status), wizard_(wizard) {}

template <typename Object>
void MapIconCommands::Rename(EntryList<Object>& list) {
    const std::shared_ptr<Object> object = list.Current();
    if (object == nullptr)
        return;
    const std::string before = object->Name();
    frmMetadata form(window_.Widget());
    form.ReduceToName();
    ShowMetaData(form, object);
    ShowEdit(list, object->Name() != before);
}

template <typename Object>
void MapIconCommands::EditMetaData(EntryList<Object>& list) {
    if (list.Current() == nullptr)
        return;
    frmMetadata form(window_.Widget());
    ShowMetaData(form, list.Current());
    ShowEdit(list, form.OK());
}

template <typename Object>
void MapIconCommands::ShowEdit(EntryList<Object>& list, bool isChanged) {
    if (isChanged)
        state_.modified = true;
    list.Refill(list.Entry());
}

void MapIconCommands::RenameMap() {
    Rename(maps_);
}

void MapIconCommands::RenameIcon() {
    Rename(icons_);
}

void MapIconCommands::MapMetaData() {
    EditMetaData(maps_);
}

void MapIconCommands::IconMetaData() {
    EditMetaData(icons_);
}

bool MapIconCommands::AskToDelete(const std::string& name, const QString& what) {
    return AskYesNo(window_.Widget(), QStringLiteral("Are you sure you want to delete '") +
                                          QString::fromStdString(name) + QStringLiteral("' ") + what);
}

template <typename Object>
void MapIconCommands::ShowDeletion(EntryList<Object>& list, Steps& steps) {
    steps.Do([&] { list.Clear(); });
    steps.Do([&] { list.Refill(0); });
    // A deletion that leaves no maps or no icons clears the flag: meant, the guide tells users so.
    state_.modified =
        steps.HaveFailed() || (state_.objAtlavex->MapCount() > 0 && state_.objAtlavex->IconCount() > 0);
    if (steps.HaveFailed())
        steps.Do([&] { list.Refill(-1); });
}

void MapIconCommands::DeleteMap() {
    if (state_.objAtlavex == nullptr || maps_.Entry() < 0)
        return;
    AtlavexLibrary& library = *state_.objAtlavex;
    const std::string id = maps_.SelectedId();
    if (!AskToDelete(library.GetMap(id)->Name(), QStringLiteral("map?")))
        return;
    library.RemoveMap(id);
    Steps steps;
    status_.SetScaled(library.MapCount() > 0);
    steps.Do([&] { wizard_.Discard(); });
    ShowDeletion(maps_, steps);
    if (library.MapCount() == 0)
        zoom_.SetEnabled(false);
    lines_.ClearSize();
    steps.ThrowFirst();
}

void MapIconCommands::DeleteIcon() {
    if (state_.objAtlavex == nullptr || icons_.Entry() < 0)
        return;
    AtlavexLibrary& library = *state_.objAtlavex;
    const std::string id = icons_.SelectedId();
    if (!AskToDelete(library.GetIcon(id)->Name(), QStringLiteral("Icon?")))
        return;
    library.RemoveIcon(id);
    Steps steps;
    ShowDeletion(icons_, steps);
    steps.ThrowFirst();
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
