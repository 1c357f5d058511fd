#pragma once

#include <cstdint>
#include <span>

/// Fills a picture of this width (pixels, at least 1) with the pattern that stands for pixels which are
/// damaged; rows without gaps.
void FillHatched(std::span<std::uint32_t> pixels, std::int32_t width);
