#include "component/PyramidLayout.h"

#include "base/ComponentError.h"

#include <string>

namespace {

std::int32_t DivideUp(std::int32_t value, std::int32_t by) {
    return value / by + (value % by != 0 ? 1 : 0);
}

void CheckTileSide(std::int32_t side) {
    if (side < MinTileSide || side > MaxTileSide)
        throw ComponentError(ErrorNumber::InvalidTileSize,
                             "A tile must be 64 to 1024 pixels wide and high, not " + std::to_string(side) +
                                 ".");
}

} // namespace

PyramidLayout::PyramidLayout(std::int32_t width, std::int32_t height, std::int32_t tileWidth,
                             std::int32_t tileHeight)
    : tileWidth_(tileWidth), tileHeight_(tileHeight) {
    CheckTileSide(tileWidth);
    CheckTileSide(tileHeight);
    if (width < 1 || height < 1)
        throw ComponentError(ErrorNumber::InvalidArgument, "A map must have at least one pixel.");
    PyramidLevel level{width, height, DivideUp(width, tileWidth), DivideUp(height, tileHeight), 0};
    levels_.push_back(level);
    while (level.columns > 1 || level.rows > 1) {
        level.firstEntry += std::int64_t{level.columns} * level.rows;
        level.width = DivideUp(level.width, 2);
        level.height = DivideUp(level.height, 2);
        level.columns = DivideUp(level.width, tileWidth);
        level.rows = DivideUp(level.height, tileHeight);
        levels_.push_back(level);
    }
}

std::int64_t PyramidLayout::Entry(int level, std::int32_t row, std::int32_t column) const {
    const PyramidLevel& at = Level(level);
    if (row < 0 || row >= at.rows || column < 0 || column >= at.columns)
        throw ComponentError(ErrorNumber::InvalidArgument, "There is no such tile.");
    return at.firstEntry + std::int64_t{row} * at.columns + column;
}

std::int64_t PyramidLayout::Entries() const {
    const PyramidLevel& top = levels_.back();
    return top.firstEntry + std::int64_t{top.columns} * top.rows;
}

bool PyramidLayout::IsEdgeTile(int level, std::int32_t row, std::int32_t column) const {
    const PyramidLevel& at = Level(level);
    return (std::int64_t{column} + 1) * tileWidth_ > at.width ||
           (std::int64_t{row} + 1) * tileHeight_ > at.height;
}
