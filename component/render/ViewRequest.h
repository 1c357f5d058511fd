#pragma once

#include <cstdint>

/// The part of a map that a viewer asks for.
struct ViewRequest {
    std::int32_t left = 0;   ///< zoomed pixels from the map's left edge
    std::int32_t top = 0;    ///< zoomed pixels from the map's upper edge
    std::int32_t width = 0;  ///< screen pixels
    std::int32_t height = 0; ///< screen pixels
    double zoom = 1.0;       ///< screen pixels per map pixel
    /// From zoom 1 upwards: a place half-way between two map pixels shows the upper one; else the even one,
    /// which a click there means.
    bool tiesUp = false;

    bool operator==(const ViewRequest&) const = default;
};
