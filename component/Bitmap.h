#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Pixels as the screen takes them: one 32-bit word a pixel, 0xAARRGGBB, colours multiplied by alpha, rows
/// from the top without gaps.
struct Bitmap {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint32_t> pixels;

    Bitmap() = default;
    Bitmap(std::int32_t w, std::int32_t h)
        : width(w), height(h), pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}

    std::uint32_t* Row(std::int32_t y) {
        return pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
    const std::uint32_t* Row(std::int32_t y) const {
        return pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
};
