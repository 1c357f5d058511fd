#pragma once

#include "component/readers/BmpHeader.h"

#include <array>
#include <cstdint>
#include <vector>

/// Turns stored rows of a plain BMP file into rows of one of our pixel formats.
class BmpPixels {
public:
    explicit BmpPixels(const BmpHeader& header);

    PixelFormat Format() const { return format_; }
    /// `stored` holds header.UsedRowBytes() bytes, `row` gets width × BytesPerPixel(Format()).
    void Convert(const std::uint8_t* stored, std::uint8_t* row) const;

private:
    /// A colour's place in a pixel, and what its values become: round(v × 255 / largest v).
    struct Field {
        std::uint32_t mask = 0;
        int shift = 0;
        std::uint64_t largest = 0;
        std::vector<std::uint8_t> scaled; ///< for fields of up to 8 bits
    };

    static Field MakeField(std::uint32_t mask);
    static std::uint8_t Extract(const Field& field, std::uint32_t pixel);

    void UnpackIndices(const std::uint8_t* stored, std::uint8_t* row) const;
    void SwapColours(const std::uint8_t* stored, std::uint8_t* row) const;
    void ExtractFields(const std::uint8_t* stored, std::uint8_t* row) const;

    std::int32_t width_;
    int bits_;
    PixelFormat format_;
    bool inBytes_; ///< blue, green and red fill whole bytes, in this order
    std::array<Field, 4> fields_;
};
