#pragma once

#include "component/tiles/RowReader.h"

#include <filesystem>
#include <memory>

/// Opens a Windows or OS/2 bitmap: 1, 2, 4, 8, 16, 24 or 32 bits a pixel, plain, run-length coded (RLE4,
/// RLE8, RLE24) or with bit fields, rows stored upwards or downwards.
///
/// Up to 8 bits give PixelFormat::Palette; the palette is filled up with black to what the bits can count.
/// 16, 24 and 32 bits give Rgb, or Rgba when the file says which bits are alpha; bit fields become
/// round(v × 255 / largest v). Pixels that a run-length coded file skips have index 0.
/// Memory: a few rows; run-length coded files go through a SpoolFile of width × height pixels.
/// Throws what OpenImage throws.
std::unique_ptr<RowReader> OpenBmp(const std::filesystem::path& file,
                                   const std::filesystem::path& spoolFolder);
