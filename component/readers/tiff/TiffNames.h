#pragma once

#include "component/readers/tiff/TiffFile.h"

#include <cstdint>
#include <string>

// What a TIFF file's numbers mean, for sentences.

/// "JPEG 2000", or "12345" for a compression that nobody named.
std::string TiffCompressionText(std::uint16_t compression);

/// "YCbCr pixels of 3 samples of 12 bits".
std::string TiffPixelsText(const TiffFile& file);
