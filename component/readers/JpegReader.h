#pragma once

#include "component/tiles/RowReader.h"

#include <filesystem>
#include <memory>

/// Opens a JPEG file: baseline, progressive or arithmetic-coded, 8 bits a sample, and turns it as its Exif
/// orientation asks.
///
/// Grey stays grey; YCbCr and RGB give Rgb, decoded with the accurate integer transform and smooth chroma
/// upsampling. CMYK and YCCK give Rgb by v × k / 255: all known writers store the inks inverted.
/// A file that lacks nothing but its end mark is read. One that breaks off before or whose coded data
/// contradict themselves is ImageDamaged, never filled with grey. Memory: a few rows; files of several scans:
/// at most JpegWindowBytes for each component, the rest of their coefficients in a SpoolFile of 2 bytes a
/// sample. Throws what OpenImage throws.
std::unique_ptr<RowReader> OpenJpeg(const std::filesystem::path& file,
                                    const std::filesystem::path& spoolFolder);
