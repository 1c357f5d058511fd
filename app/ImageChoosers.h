#pragma once

#include <QString>

#include <optional>

class EditorWindow;

// The file dialogs for images; nothing when cancelled.

std::optional<QString> ChooseMapImage(EditorWindow& window);
std::optional<QString> ChooseIconImage(EditorWindow& window);
