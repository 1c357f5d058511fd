#include "component/readers/tiff/TiffUnitRows.h"

#include <utility>

namespace {

std::int64_t Units(std::int64_t pixels, std::int64_t unit) {
    return (pixels + unit - 1) / unit;
}

} // namespace

TiffUnitRows::TiffUnitRows(const TiffLayout& layout, std::unique_ptr<TiffRows> units)
    : layout_(layout), units_(std::move(units)), row_(static_cast<std::size_t>(TiffRowBytes(layout))) {}

TiffLayout TiffUnitRows::UnitLayout(const TiffLayout& layout) {
    TiffLayout units = layout;
    const std::int64_t whole = layout.height / layout.blockHeight, rest = layout.height % layout.blockHeight;
    units.blockWidth = Units(layout.blockWidth, layout.unitWidth);
    units.blockHeight = Units(layout.blockHeight, layout.unitHeight);
    units.width = static_cast<std::int32_t>(Units(layout.width, layout.unitWidth));
    units.height = static_cast<std::int32_t>(whole * units.blockHeight + Units(rest, layout.unitHeight));
    units.samples = static_cast<std::uint16_t>(layout.unitWidth * layout.unitHeight + 2);
    units.unitWidth = units.unitHeight = 1;
    return units;
}

void TiffUnitRows::Next(const std::function<void()>& pause) {
    const std::int64_t inUnit = next_++ % layout_.blockHeight % layout_.unitHeight;
    if (inUnit == 0)
        units_->Next(pause);
    const std::int64_t lumas = layout_.unitWidth * layout_.unitHeight;
    const std::uint8_t* unit = units_->Plane(0);
    std::uint8_t* out = row_.data();
    for (std::int64_t x = 0; x < layout_.width; ++x) {
        const std::int64_t inRow = x % layout_.unitWidth;
        if (x > 0 && inRow == 0)
            unit += lumas + 2;
        *out++ = unit[inUnit * layout_.unitWidth + inRow];
        *out++ = unit[lumas];
        *out++ = unit[lumas + 1];
    }
}
