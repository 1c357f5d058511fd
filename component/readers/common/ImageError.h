#pragma once

#include "base/ComponentError.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// The sentences of the image readers, and the limits that every one of them keeps.

/// Throws "The image '<path>' could not be read: <reason>."
[[noreturn]] void ThrowImageError(ErrorNumber number, const std::filesystem::path& path,
                                  const std::string& reason);
[[noreturn]] void ThrowDamaged(const std::filesystem::path& path, const std::string& reason);
[[noreturn]] void ThrowNotReadable(const std::filesystem::path& path, const std::string& reason);

/// Throws ImageDamaged for a file that breaks off before a displayed row, counted from 0.
[[noreturn]] void ThrowEndsBeforeRow(const std::filesystem::path& path, std::int64_t row);

/// Throws ImageDamaged for a size below 1, ImageTooLarge beyond MaxImageSide or MaxImagePixels.
void CheckImageSize(const std::filesystem::path& path, std::int64_t width, std::int64_t height);

/// Some kinds of file may leave out pixels (a GIF's screen around its frame, skipped rows of a run-length
/// coded BMP, a progressive JPEG's empty scans), so that a few bytes can claim gigapixels. Beyond
/// AlwaysAcceptedPixels such an image must have one byte for every MostPixelsPerByte pixels, else it is
/// refused as ImageTooLarge. No coder of these kinds reaches that ratio with pixels that it does code: GIF
/// ends at 4096 pixels in 12 bits, run lengths at 255 in 16, Huffman-coded JPEG at 64 in 1.
inline constexpr std::int64_t AlwaysAcceptedPixels = std::int64_t{1} << 26;
inline constexpr std::int64_t MostPixelsPerByte = 8192;
void CheckPixelsPerByte(const std::filesystem::path& path, std::int64_t pixels, std::int64_t fileSize,
                        std::int64_t alwaysAccepted = AlwaysAcceptedPixels);

/// A buffer, or ErrorNumber::OutOfMemory naming the file.
std::vector<std::uint8_t> ImageBuffer(const std::filesystem::path& path, std::int64_t bytes);
