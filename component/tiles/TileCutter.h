#pragma once

#include "component/tiles/StripPlan.h"
#include "component/tiles/TileCodec.h"
#include "component/tiles/TileQueue.h"

#include <cstdint>
#include <span>
#include <vector>

/// Cuts tiles out of strips and encodes them. One object a thread.
class TileCutter {
public:
    /// The plan must outlive the object.
    explicit TileCutter(const StripPlan& plan) : plan_(plan) {}

    /// The tile as PNG, valid until the next call. A tile that reaches beyond the image becomes RGBA of full
    /// size, 0, 0, 0, 0 outside.
    std::span<const std::uint8_t> Encode(const Strip& strip, std::int32_t column);

    /// How many pixels of the tile lie inside the image.
    std::int64_t PixelsInside(const Strip& strip, std::int32_t column) const;

private:
    std::int32_t ColumnsInside(const Strip& strip, std::int32_t column) const;
    PixelView EdgeView(const PixelView& inside);

    const StripPlan& plan_;
    TileEncoder encoder_;
    std::vector<std::uint8_t> edge_;
};
