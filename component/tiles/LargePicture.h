#pragma once

#include "base/Progress.h"
#include "component/tiles/TileCodec.h"

/// The PNG file of a picture that may be much larger than a tile, as TileEncoder writes it. The bytes of its
/// rows are added to the progress in steps, and a cancel is seen between them.
std::vector<std::uint8_t> EncodeInSteps(const PixelView& view, Progress& progress);
