#pragma once

#include "component/tiles/RowReader.h"

#include <cstdint>
#include <span>

/// The orientation that Exif data ask for: tag 0x0112 of the first directory, in either byte order. The data
/// begin with the TIFF header ("II" or "MM"). TopLeft when they name none or are damaged: a broken note about
/// a photograph is no reason to refuse it.
Orientation ExifOrientation(std::span<const std::uint8_t> exif);
