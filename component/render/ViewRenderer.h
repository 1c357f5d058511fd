#pragma once

#include "component/Bitmap.h"
#include "component/PyramidLayout.h"
#include "component/render/ViewMemory.h"
#include "component/render/ViewRequest.h"
#include "component/tiles/TileStore.h"

#include <memory>

/// Draws the visible part of a map from its tiles. Positions are screen pixels of the view plus its offset;
/// the map shows at the positions 0 <= p < size · zoom.
///
/// From zoom 1 upwards a screen pixel shows the map pixel that a click on it hits: p / zoom rounded half to
/// even (so that the first pixel is half as wide as the others), or half up where the request says so, where
/// positions that round to just beyond the last pixel show the last one. Below, it shows the mean of what
/// lies within half a screen pixel of the map pixel p / zoom, taken from the pyramid level next above the
/// zoom; at a level's own zoom the level as it is, whose pixels lie up to half a screen pixel aside.
///
/// Decoded tiles are kept in a cache of 128 MiB, least recently used out first; while a view needs more, up
/// to 256 MiB. A larger view is drawn in blocks of that size. Of a view that was only scrolled, or whose size
/// changed, only what was not in the last one is drawn.
class ViewRenderer {
public:
    /// The memory is shared with the renderers of other maps. Its decoders' number is that of the threads
    /// that decode and paint; none outlives a call. The source must outlive the renderer.
    ViewRenderer(const PyramidLayout& layout, TileSource& source, std::shared_ptr<ViewMemory> memory);
    ~ViewRenderer();

    /// True when the last view shows a coarser level, because its own tiles took longer than the memory's
    /// patience, or blank places, because they could not be read (another program's lock). The same request
    /// again goes on bringing them, and draws the view when they are there.
    bool IsDraft() const;
    /// True when it is a draft because tiles could not be read when they were last asked for.
    bool IsObstructed() const;

    /// Draws a view of the requested size; the part outside the map is transparent. A damaged tile
    /// is hatched, and not read again while it stays in the cache. The picture stays as it is
    /// as long as it is held. False, and `view` untouched, when the request is the last one again and there
    /// is nothing better yet. Throws InvalidArgument unless width and height are 1 to 16384 and the zoom is
    /// finite and above 0; OutOfMemory; without patience also what keeps tiles from being read.
    bool Render(const ViewRequest& request, std::shared_ptr<const Bitmap>& view);
    /// The next request is drawn, though it be the last one again.
    void ForgetAnswer();

private:
    struct State;
    std::unique_ptr<State> state_;
};
