#include "app/ScaledFlag.h"

#include "app/EditorState.h"
#include "app/EditorWindow.h"

QString ScalingText(bool scaled) {
    return scaled ? QStringLiteral("Click on map to verify positions") : QStringLiteral("Not scaled");
}

void SetScaled(EditorState& state, EditorWindow& window, bool scaled) {
    state.mapScaled = scaled;
    window.SetStatus(ScalingText(scaled));
}

void TakeStoredScaling(EditorState& state, EditorWindow& window) {
    SetScaled(state, window, state.currentMap != nullptr && state.currentMap->IsScaled());
}
