#pragma once

#include "component/tiles/RowReader.h"

#include <filesystem>
#include <memory>

/// Opens the first frame of a GIF file (87a or 89a), placed on the logical screen, which is the image's size.
/// A frame that reaches beyond the screen enlarges it.
///
/// Gives PixelFormat::Palette. Pixels outside the frame are transparent: they take the frame's transparent
/// index or a free one; where all 256 indices have a colour, the image becomes Rgba.
/// Memory: one row; interlaced frames go through a SpoolFile of the frame's size.
/// Throws what OpenImage throws.
std::unique_ptr<RowReader> OpenGif(const std::filesystem::path& file,
                                   const std::filesystem::path& spoolFolder);
