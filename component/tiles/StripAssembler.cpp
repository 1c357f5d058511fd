#include "component/tiles/StripAssembler.h"

#include "component/tiles/Halving.h"

#include <utility>

StripAssembler::StripAssembler(const StripPlan& plan, TileQueue& queue)
    : plan_(plan), queue_(queue), levels_(static_cast<std::size_t>(plan.Layout().Levels())) {}

std::int32_t StripAssembler::RowsLeft() const {
    return plan_.Layout().Height() - levels_[0].rowsDone;
}

std::int32_t StripAssembler::RowsLeftInStrip() const {
    const std::int32_t row = levels_[0].rowsDone / plan_.Layout().TileHeight();
    return plan_.StripRows(0, row) - levels_[0].rowsInStrip;
}

std::uint8_t* StripAssembler::NextRow(int level) {
    Level& at = levels_[static_cast<std::size_t>(level)];
    if (!at.strip.pixels)
        at.strip = queue_.NewStrip(level, at.rowsDone / plan_.Layout().TileHeight());
    return at.strip.pixels.get() + static_cast<std::size_t>(at.rowsInStrip) * plan_.RowBytes(level);
}

void StripAssembler::RowsFilled(std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i)
        RowFilled(0);
}

void StripAssembler::RowFilled(int level) {
    Level& at = levels_[static_cast<std::size_t>(level)];
    const std::uint8_t* row = NextRow(level);
    const bool isLast = at.rowsDone + 1 == plan_.Layout().Level(level).height;
    if (level + 1 < plan_.Layout().Levels()) {
        if (at.rowsDone % 2 == 0)
            at.upper = row;
        if (at.rowsDone % 2 != 0)
            Halve(level, row);
        else if (isLast)
            Halve(level, nullptr);
    }
    ++at.rowsDone;
    ++at.rowsInStrip;
    if (at.rowsInStrip == plan_.StripRows(level, at.strip.row))
        GiveAway(level);
}

void StripAssembler::Halve(int level, const std::uint8_t* lower) {
    Level& at = levels_[static_cast<std::size_t>(level)];
    const std::uint8_t* upper = Colours(level, at.upper, at.upperColours);
    if (lower != nullptr)
        lower = Colours(level, lower, at.lowerColours);
    HalveRows(upper, lower, plan_.Layout().Level(level).width, plan_.Format(level + 1), NextRow(level + 1));
    at.upper = nullptr;
    RowFilled(level + 1);
}

const std::uint8_t* StripAssembler::Colours(int level, const std::uint8_t* row,
                                            std::vector<std::uint8_t>& buffer) const {
    if (plan_.Format(level) != PixelFormat::Palette)
        return row;
    const std::int32_t width = plan_.Layout().Level(level).width;
    const PixelFormat format = plan_.Format(level + 1);
    buffer.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(BytesPerPixel(format)));
    IndicesToColours(row, plan_.Image().palette, width, format, buffer.data());
    return buffer.data();
}

void StripAssembler::GiveAway(int level) {
    Level& at = levels_[static_cast<std::size_t>(level)];
    if (at.upper != nullptr) {
        // Tiles of odd height part a pair of rows.
        at.upperCopy.assign(at.upper, at.upper + plan_.RowBytes(level));
        at.upper = at.upperCopy.data();
    }
    at.rowsInStrip = 0;
    queue_.Add(std::exchange(at.strip, Strip{}));
}
