#pragma once

#include "component/readers/tiff/TiffRows.h"
#include "component/readers/tiff/TiffSamples.h"

#include <functional>

/// Between which values the signed or floating-point samples of a page are stretched to 0 and 255.
///
/// Colours: the lowest and the highest finite sample, all colours taken together so that hues stay; samples
/// that the file declares to be no data (GDAL_NODATA) do not count. Colours that are stored multiplied by
/// alpha begin at 0, for what is divided by alpha must be a multiple. Alpha is stretched by itself, from 0 to
/// its highest sample, so that the most opaque pixels are opaque. Where all samples are the same, they become
/// 255 above 0 and else 0.
struct TiffRanges {
    TiffRange colours;
    TiffRange alpha;
};

/// Reads all rows. Throws what they throw; `pause` is called in every row and may throw.
TiffRanges FindTiffRanges(const TiffFile& file, const TiffLayout& layout, TiffRows& rows,
                          const std::function<void()>& pause);
