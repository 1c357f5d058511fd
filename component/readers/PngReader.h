#pragma once

#include "component/tiles/RowReader.h"

#include <filesystem>
#include <memory>

/// Opens a PNG file of any colour type and depth; of an animated one the default image. An Exif orientation
/// is applied; gamma and colour profiles are not.
///
/// Grey stays grey (scaled to 0..255), palettes stay palettes with their transparency, filled up with black
/// to what the bits can count; other transparency gives Rgba; 16-bit samples become round(v / 257).
/// Any checksum that does not match is ImageDamaged.
/// Memory: a few rows; interlaced files go through a SpoolFile of width × height pixels.
/// Throws what OpenImage throws.
std::unique_ptr<RowReader> OpenPng(const std::filesystem::path& file,
                                   const std::filesystem::path& spoolFolder);
