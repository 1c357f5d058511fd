#include "app/ScaledFlag.h"

#include "app/EditorState.h"
#include "app/EditorWindow.h"

void SetScaled(EditorState& state, EditorWindow& window, bool scaled) {
    state.mapScaled = scaled;
    window.SetStatus(scaled ? QStringLiteral("Click on map to verify positions")
                            : QStringLiteral("Not scaled"));
}

void TakeStoredScaling(EditorState& state, EditorWindow& window) {
    SetScaled(state, window, state.currentMap != nullptr && state.currentMap->IsScaled());
}
