#pragma once

#include "tests/readers/ReferenceDecoder.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>
// The library's header needs the C stream type first.
#include <jpeglib.h>

/// How a JPEG file is to be written; what no common tool offers is here.
struct JpegOptions {
    J_COLOR_SPACE stored = JCS_YCbCr; ///< colour space in the file; 1, 3 or 4 components follow from it
    std::vector<std::pair<int, int>> sampling{}; ///< horizontal and vertical factors; the library's if empty
    int quality = 85;
    bool progressive = false;
    bool arithmetic = false;
    bool sequentialScans = false; ///< one scan for each component, not progressive
    int restartRows = 0;
    std::string exif{};      ///< an APP1 segment's content
    bool adobeMarker = true; ///< whether CMYK and RGB files carry Adobe's marker
};

/// Writes a test picture of this size. With CMYK and YCCK the four inks are red, green, blue of the picture
/// and a slope, as they are.
void WriteJpeg(const std::filesystem::path& file, std::int32_t width, std::int32_t height,
               const JpegOptions& options);
