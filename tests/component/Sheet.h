#pragma once

#include "component/PixelFormat.h"

#include <cstdint>
#include <filesystem>
#include <vector>

/// An image whose pixels are known, in the format in which a library should keep it.
struct Sheet {
    PixelFormat format = PixelFormat::Rgb;
    std::int32_t width = 0;
    std::int32_t height = 0;
    Palette palette;
    std::vector<std::uint8_t> pixels;

    bool operator==(const Sheet&) const = default;
};

/// Noise of the given size; another seed gives another image. A palette image gets 200 distinct colours, the
/// first of them transparent and the second half so; an RGBA image every alpha.
Sheet MakeSheet(PixelFormat format, std::int32_t width, std::int32_t height, unsigned seed = 1);

/// One colour all over.
Sheet MakeBlankSheet(std::int32_t width, std::int32_t height);

/// Writes the sheet as a PNG file by libpng.
void WritePng(const Sheet& sheet, const std::filesystem::path& file);

/// Reads a PNG file back by libpng, as four bytes a pixel.
std::vector<std::uint8_t> ReadPngAsRgba(const std::vector<std::uint8_t>& png);

/// The pixels as four bytes each.
std::vector<std::uint8_t> AsRgba(const Sheet& sheet);
