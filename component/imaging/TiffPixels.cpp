#include "component/imaging/TiffPixels.h"

#include "component/imaging/TiffSamples.h"

#include <algorithm>

namespace {

std::uint8_t Unmultiplied(std::uint8_t colour, std::uint8_t alpha) {
    if (alpha == 0)
        return 0;
    return static_cast<std::uint8_t>(std::min((unsigned{colour} * 255 + alpha / 2U) / alpha, 255U));
}

} // namespace

TiffPixels::TiffPixels(const TiffLayout& layout, Palette palette)
    : layout_(layout), palette_(std::move(palette)) {
    for (std::vector<std::uint8_t>& channel : channels_)
        channel.resize(static_cast<std::size_t>(layout.width));
}

/// Whether a stored row can be taken over byte by byte.
bool TiffPixels::IsStoredAsKept() const {
    if (layout_.bits != 8 || layout_.separatePlanes)
        return false;
    switch (layout_.colour) {
    case TiffColour::Grey:
        return layout_.samples == 1 && layout_.number == TiffNumber::Unsigned;
    case TiffColour::Indexed:
        return layout_.samples == 1;
    case TiffColour::Rgb:
        return layout_.samples == BytesPerPixel(layout_.Format()) && layout_.number == TiffNumber::Unsigned &&
               layout_.alpha != TiffAlpha::Associated;
    default:
        return false;
    }
}

void TiffPixels::Convert(const TiffRows& rows, std::uint8_t* out) {
    if (IsStoredAsKept()) {
        std::copy_n(rows.Plane(0), TiffRowBytes(layout_), out);
        return;
    }
    for (int sample = 0; sample < layout_.ColourSamples(); ++sample)
        Unpack(rows, static_cast<std::size_t>(sample), sample);
    if (layout_.alpha != TiffAlpha::None)
        Unpack(rows, AlphaChannel, layout_.alphaSample);
    switch (layout_.Format()) {
    case PixelFormat::Grey:
        return PutGreys(out);
    case PixelFormat::Palette:
        std::copy(channels_[0].begin(), channels_[0].end(), out);
        return;
    case PixelFormat::Rgb:
        return PutRgb(out);
    case PixelFormat::Rgba:
        return PutRgba(out);
    }
}

void TiffPixels::Unpack(const TiffRows& rows, std::size_t channel, int sample) {
    const std::uint8_t* row = rows.Plane(layout_.separatePlanes ? sample : 0);
    const std::size_t first = layout_.separatePlanes ? 0 : static_cast<std::size_t>(sample);
    const auto step = static_cast<std::size_t>(layout_.SamplesTogether());
    if (layout_.colour == TiffColour::Indexed && channel != AlphaChannel)
        UnpackTiffIndices(layout_.bits, row, first, step, channels_[channel]);
    else
        UnpackTiffSamples(layout_, row, first, step, channels_[channel]);
}

void TiffPixels::ToColours(std::size_t pixel, std::uint8_t* rgb) const {
    const std::uint8_t first = channels_[0][pixel];
    switch (layout_.colour) {
    case TiffColour::Grey:
        std::fill_n(rgb, 3, first);
        return;
    case TiffColour::GreyInverse:
        std::fill_n(rgb, 3, static_cast<std::uint8_t>(255 - first));
        return;
    case TiffColour::Indexed:
        rgb[0] = palette_[first].red;
        rgb[1] = palette_[first].green;
        rgb[2] = palette_[first].blue;
        return;
    case TiffColour::Cmyk:
        for (std::size_t i = 0; i < 3; ++i)
            rgb[i] =
                static_cast<std::uint8_t>((255 - channels_[i][pixel]) * (255 - channels_[3][pixel]) / 255);
        return;
    case TiffColour::Rgb:
    case TiffColour::Converted:
        for (std::size_t i = 0; i < 3; ++i)
            rgb[i] = channels_[i][pixel];
        return;
    }
}

void TiffPixels::PutGreys(std::uint8_t* out) const {
    const unsigned flip = layout_.colour == TiffColour::GreyInverse ? 255 : 0;
    for (const std::uint8_t grey : channels_[0])
        *out++ = static_cast<std::uint8_t>(grey ^ flip);
}

void TiffPixels::PutRgb(std::uint8_t* out) const {
    for (std::size_t i = 0; i < channels_[0].size(); ++i, out += 3)
        ToColours(i, out);
}

void TiffPixels::PutRgba(std::uint8_t* out) const {
    for (std::size_t i = 0; i < channels_[0].size(); ++i, out += 4) {
        ToColours(i, out);
        out[3] = channels_[AlphaChannel][i];
        for (std::size_t colour = 0; layout_.alpha == TiffAlpha::Associated && colour < 3; ++colour)
            out[colour] = Unmultiplied(out[colour], out[3]);
    }
}
