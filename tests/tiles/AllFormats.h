#pragma once

#include "component/PixelFormat.h"

inline constexpr PixelFormat AllFormats[] = {PixelFormat::Grey, PixelFormat::Palette, PixelFormat::Rgb,
                                             PixelFormat::Rgba};
