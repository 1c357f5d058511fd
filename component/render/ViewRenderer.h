#pragma once

#include "component/imaging/Bitmap.h"
#include "component/imaging/PyramidLayout.h"
#include "component/imaging/TileStore.h"

#include <memory>

/// The part of a map that a viewer asks for.
struct ViewRequest {
    std::int32_t left = 0;   ///< zoomed pixels from the map's left edge
    std::int32_t top = 0;    ///< zoomed pixels from the map's upper edge
    std::int32_t width = 0;  ///< screen pixels
    std::int32_t height = 0; ///< screen pixels
    double zoom = 1.0;       ///< screen pixels per map pixel

    bool operator==(const ViewRequest&) const = default;
};

/// Draws the visible part of a map from its tiles: nearest neighbour from zoom 1 upwards (the screen pixel
/// shows exactly the map pixel that a click on it hits), smooth below, from the pyramid level next above the
/// zoom. Decoded tiles are kept in a bounded cache, least recently used out first.
class ViewRenderer {
public:
    /// `threads` workers decode cold tiles (0: one a core); none outlives a call. The source must outlive
    /// the renderer.
    ViewRenderer(const PyramidLayout& layout, TileSource& source, int threads = 0);
    ~ViewRenderer();

    /// Draws into `view`, which takes the requested size; the part outside the map is transparent, a damaged
    /// tile is hatched. False, and nothing drawn, when the request is the last one again.
    bool Render(const ViewRequest& request, Bitmap& view);

private:
    struct State;
    std::unique_ptr<State> state_;
};
