#pragma once

#include "component/AtlavexImage.h"

#include <filesystem>

/// Writes the pixels of an icon or a rendered view as an RGBA PNG file, colours no longer multiplied by
/// alpha. Throws ComponentError; also for an image whose pixels are not at hand.
void WriteBitmapAsPng(const AtlavexImage* image, const std::filesystem::path& file);
