#include "app/LibraryChoosers.h"

#include "app/EditorWindow.h"
#include "platform/clsFileDialog.h"

namespace {

constexpr std::int16_t OpenDialog = 1;
constexpr std::int16_t SaveDialog = 2;

std::optional<QString> Choose(EditorWindow& window, const QString& key, const QString& title,
                              std::int16_t type) {
    clsFileDialog dialog;
    dialog.Init(QStringLiteral("Brisquent"), key);
    dialog.SetTitle(title);
    dialog.SetFilter(QStringLiteral("Atlavex (*.Atlavex)|*.Atlavex|All files (*.*) |*.*"));
    dialog.SetDialogType(type);
    if (!dialog.Show(window.FileDialog()))
        return std::nullopt;
    dialog.SaveSettings();
    return dialog.FileName();
}

} // namespace

std::optional<QString> ChooseLibraryToOpen(EditorWindow& window) {
    return Choose(window, QStringLiteral("OpenAtlavex"), QStringLiteral("Open Atlavex"), OpenDialog);
}

std::optional<QString> ChooseLibraryToMerge(EditorWindow& window) {
    return Choose(window, QStringLiteral("OpenAtlavex"), QStringLiteral("Add Atlavex"), OpenDialog);
}

std::optional<QString> ChooseLibraryToSave(EditorWindow& window) {
    return Choose(window, QStringLiteral("SaveAtlavexAs"), QStringLiteral("Save Atlavex As"), SaveDialog);
}
