#pragma once

#include <cstdint>

/// Which way a stored image is to be turned for display; the numbers are those of the Exif and TIFF
/// orientation tags: the value says where the first stored row and column lie in the displayed image.
enum class Orientation : std::uint8_t {
    TopLeft = 1,     ///< as stored
    TopRight = 2,    ///< mirrored left to right
    BottomRight = 3, ///< turned by 180 degrees
    BottomLeft = 4,  ///< mirrored top to bottom
    LeftTop = 5,     ///< mirrored about the main diagonal
    RightTop = 6,    ///< turned by 90 degrees clockwise
    RightBottom = 7, ///< mirrored about the other diagonal
    LeftBottom = 8,  ///< turned by 90 degrees anticlockwise
};
