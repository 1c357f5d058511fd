#pragma once

#include "base/Progress.h"
#include "component/PyramidLayout.h"
#include "component/tiles/RowReader.h"
#include "component/tiles/TileStore.h"

/// Reads the image once from top to bottom and hands every tile of every level to the sink. An overview's
/// pixel is the mean of the 2×2 pixels below it, weighted by alpha, pixels outside the image not counted
/// (Halving.h says how it is rounded); palette images become RGB (RGBA when the palette has transparency)
/// above level 0. Tiles at the right and bottom edge are RGBA of full size, transparent beyond the image.
/// Memory holds a few strips of one tile height a level, whatever the image's height. Progress counts the
/// pixels of level 0 that are finished. `threads` workers share the work (0: one a core), the calling thread
/// among them; none outlives the call. Throws what the reader or the sink throws, Cancelled, and
/// OutOfMemory, also for an image so wide that a few strips of it would fill the memory.
void BuildPyramid(RowReader& reader, const PyramidLayout& layout, TileSink& sink, Progress& progress,
                  int threads = 0);
