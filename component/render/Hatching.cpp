#include "component/render/Hatching.h"

namespace {

constexpr std::uint32_t Line = 0xFFB04040;
constexpr std::int32_t Period = 16;
constexpr std::int32_t Width = 3;

} // namespace

void FillHatched(std::span<std::uint32_t> pixels, std::int32_t width) {
    std::int32_t x = 0, y = 0;
    for (std::uint32_t& pixel : pixels) {
        pixel = (x + y) % Period < Width ? Line : HatchGround;
        if (++x == width) {
            x = 0;
            ++y;
        }
    }
}
