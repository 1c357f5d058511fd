#pragma once

#include <cstdint>
#include <span>

/// The colour between the lines, 0xAARRGGBB; alone it stands for pixels that could not be read just now.
inline constexpr std::uint32_t HatchGround = 0xFFE4E4E4;

/// Fills a picture of this width (pixels, at least 1) with the pattern that stands for pixels which are
/// damaged; rows without gaps.
void FillHatched(std::span<std::uint32_t> pixels, std::int32_t width);
