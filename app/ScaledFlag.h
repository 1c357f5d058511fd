#pragma once

#include <QString>

struct EditorState;
class EditorWindow;

/// What the status line says of a current map that is scaled or not.
QString ScalingText(bool scaled);

/// Says whether the current map is scaled: the editor's flag and the status line together.
void SetScaled(EditorState& state, EditorWindow& window, bool scaled);

/// The same from what is stored with the current map: for a map that becomes current through a load or the
/// user's choice. Without a current map: not scaled.
void TakeStoredScaling(EditorState& state, EditorWindow& window);
