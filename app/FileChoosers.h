#pragma once

#include <QString>

#include <optional>

class EditorWindow;

// The file dialogs of the menus; each answers with the full path, or nothing when it was cancelled.

/// Open and merge share what they remember, so that both start in the folder last used by either.
std::optional<QString> ChooseLibraryToOpen(EditorWindow& window);
std::optional<QString> ChooseLibraryToMerge(EditorWindow& window);
std::optional<QString> ChooseLibraryToSave(EditorWindow& window);

std::optional<QString> ChooseMapImage(EditorWindow& window);
std::optional<QString> ChooseIconImage(EditorWindow& window);
