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

/// Draws the visible part of a map from its tiles. Positions are screen pixels of the view plus its offset;
/// the map shows at the positions 0 <= p < size · zoom.
///
/// From zoom 1 upwards a screen pixel shows the map pixel that a click on it hits: p / zoom rounded half to
/// even (so that the first pixel is half as wide as the others), where positions that round to just beyond
/// the last pixel show the last one. Below, it shows the mean of what it covers, from p / zoom to (p + 1) /
/// zoom, taken from the pyramid level next above the zoom; the pixel that a click hits lies in or at the edge
/// of that part, less than half a screen pixel from its middle.
///
/// Decoded tiles are kept in a cache of 128 MiB, least recently used out first; while a view needs more, up
/// to 256 MiB. A larger view is drawn in blocks of that size.
class ViewRenderer {
public:
    /// `threads` workers decode cold tiles (0: one a core); none outlives a call. The source must outlive
    /// the renderer.
    ViewRenderer(const PyramidLayout& layout, TileSource& source, int threads = 0);
    ~ViewRenderer();

    /// Draws into `view`, which takes the requested size; the part outside the map is transparent. A tile
    /// that cannot be read or decoded is hatched, and not read again while it stays in the cache. False, and
    /// nothing drawn, when the request is the last one again. Throws InvalidArgument unless width and height
    /// are 1 to 16384 and the zoom is finite and above 0; OutOfMemory.
    bool Render(const ViewRequest& request, Bitmap& view);

private:
    struct State;
    std::unique_ptr<State> state_;
};
