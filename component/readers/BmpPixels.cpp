#include "component/readers/BmpPixels.h"

#include <bit>

namespace {

constexpr std::array<std::uint32_t, 4> MasksOfBytes{0xFF0000, 0x00FF00, 0x0000FF, 0};

PixelFormat FormatOf(const BmpHeader& header) {
    if (header.bits <= 8)
        return PixelFormat::Palette;
    return header.masks[3] != 0 ? PixelFormat::Rgba : PixelFormat::Rgb;
}

std::uint8_t Scale(std::uint64_t value, std::uint64_t largest) {
    return static_cast<std::uint8_t>((value * 255 + largest / 2) / largest);
}

} // namespace

BmpPixels::BmpPixels(const BmpHeader& header)
    : width_(header.width), bits_(header.bits), format_(FormatOf(header)),
      inBytes_(header.bits >= 24 && header.masks == MasksOfBytes) {
    for (std::size_t colour = 0; colour < fields_.size(); ++colour)
        fields_[colour] = MakeField(header.masks[colour]);
}

BmpPixels::Field BmpPixels::MakeField(std::uint32_t mask) {
    Field field;
    if (mask == 0)
        return field;
    field.mask = mask;
    field.shift = std::countr_zero(mask);
    field.largest = mask >> field.shift;
    for (std::uint64_t value = 0; field.largest < 256 && value <= field.largest; ++value)
        field.scaled.push_back(Scale(value, field.largest));
    return field;
}

std::uint8_t BmpPixels::Extract(const Field& field, std::uint32_t pixel) {
    const std::uint32_t value = (pixel & field.mask) >> field.shift;
    if (!field.scaled.empty())
        return field.scaled[value];
    return field.largest != 0 ? Scale(value, field.largest) : std::uint8_t{0};
}

void BmpPixels::Convert(const std::uint8_t* stored, std::uint8_t* row) const {
    if (format_ == PixelFormat::Palette)
        UnpackIndices(stored, row);
    else if (inBytes_)
        SwapColours(stored, row);
    else
        ExtractFields(stored, row);
}

void BmpPixels::UnpackIndices(const std::uint8_t* stored, std::uint8_t* row) const {
    const int inByte = 8 / bits_;
    const int mask = (1 << bits_) - 1;
    for (std::int32_t column = 0; column < width_; ++column)
        row[column] = static_cast<std::uint8_t>(
            stored[column / inByte] >> (inByte - 1 - column % inByte) * bits_ & mask);
}

void BmpPixels::SwapColours(const std::uint8_t* stored, std::uint8_t* row) const {
    const int bytes = bits_ / 8;
    for (std::int32_t column = 0; column < width_; ++column, stored += bytes, row += 3) {
        row[0] = stored[2];
        row[1] = stored[1];
        row[2] = stored[0];
    }
}

void BmpPixels::ExtractFields(const std::uint8_t* stored, std::uint8_t* row) const {
    const int bytes = bits_ / 8;
    const auto channels = static_cast<std::size_t>(BytesPerPixel(format_));
    for (std::int32_t column = 0; column < width_; ++column, stored += bytes, row += channels) {
        std::uint32_t pixel = 0;
        for (int byte = bytes - 1; byte >= 0; --byte)
            pixel = pixel << 8 | stored[byte];
        for (std::size_t channel = 0; channel < channels; ++channel)
            row[channel] = Extract(fields_[channel], pixel);
    }
}
