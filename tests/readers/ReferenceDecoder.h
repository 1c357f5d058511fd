#pragma once

#include "component/tiles/RowReader.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// A whole decoded image: four bytes a pixel (red, green, blue, alpha, not premultiplied), rows from the top.
struct RgbaImage {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> pixels;
};

/// Reads all rows that the reader still has, `rowsAtOnce` per call, into buffers of exactly their size, so
/// that a sanitizer sees a byte written too far. Fails the test on an index beyond the palette.
RgbaImage ReadAllRows(RowReader& reader, std::int32_t rowsAtOnce = 7);

/// The image as OpenImage and its reader decode it.
RgbaImage DecodeWithEngine(const std::filesystem::path& file, std::int32_t rowsAtOnce = 7);

/// The image as Pillow decodes it: first frame, Exif orientation applied, converted to RGBA by Pillow.
RgbaImage DecodeWithPillow(const std::filesystem::path& file);

/// The image as ImageMagick decodes it: first frame, orientation applied, 8 bits a sample, sRGB taken as is.
/// `options` are put before the file name ("-define", ...).
RgbaImage DecodeWithImageMagick(const std::filesystem::path& file,
                                const std::vector<std::string>& options = {});

/// An image kept as raw RGBA: width and height as little-endian 32-bit numbers, then the pixels. The test
/// scripts write the truth that they know by construction in this way.
RgbaImage ReadRawImage(const std::filesystem::path& file);

/// How far two decoders may differ.
struct Tolerance {
    int perChannel = 0;               ///< largest difference of a sample
    bool ignoreHiddenColours = false; ///< colours of a pixel that is fully transparent in both do not count
};

/// Succeeds when both images have the same size and pixels; else names the first pixel that differs, how
/// many do, and the largest difference.
testing::AssertionResult SamePixels(const RgbaImage& actual, const RgbaImage& expected,
                                    Tolerance tolerance = {});

/// The images in a folder that have a raw image of the truth beside them ("a.png" and "a.png.rgba"), by name.
std::vector<std::filesystem::path> ImagesWithTruth(const std::filesystem::path& folder);
RgbaImage ReadTruth(const std::filesystem::path& image);

/// Runs a Python script of this folder with Debian's Python; fails the test when the script does.
void RunScript(const std::string& script, const std::vector<std::string>& arguments);
