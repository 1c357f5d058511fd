#include "component/readers/tiff/TiffPixels.h"

#include <algorithm>
#include <cmath>

namespace {

std::uint8_t Unmultiplied(std::uint8_t colour, std::uint8_t alpha) {
    if (alpha == 0)
        return 0;
    return static_cast<std::uint8_t>(std::min((unsigned{colour} * 255 + alpha / 2U) / alpha, 255U));
}

} // namespace

TiffPixels::TiffPixels(const TiffFile& file, const TiffLayout& layout, Palette palette)
    : layout_(layout), palette_(std::move(palette)) {
    if (layout.colour == TiffColour::Lab)
        lab_.emplace(file);
    if (layout.colour == TiffColour::Ycbcr)
        ycbcr_.emplace(file);
    const auto width = static_cast<std::size_t>(layout.width);
    for (std::vector<std::uint8_t>& channel : channels_)
        channel.resize(width);
    if (layout.IsStretched() || lab_)
        values_.resize(width);
    if (layout.colour == TiffColour::Indexed)
        indices_.resize(width);
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
    UnpackColours(rows);
    if (layout_.alpha != TiffAlpha::None)
        Unpack(rows, AlphaChannel, layout_.alphaSample);
    switch (layout_.Format()) {
    case PixelFormat::Grey:
        return PutGreys(out);
    case PixelFormat::Palette:
        std::ranges::transform(indices_, out,
                               [](std::uint16_t index) { return static_cast<std::uint8_t>(index); });
        return;
    case PixelFormat::Rgb:
        return PutRgb(out);
    case PixelFormat::Rgba:
        return PutRgba(out);
    }
}

void TiffPixels::UnpackColours(const TiffRows& rows) {
    if (layout_.colour == TiffColour::Indexed) {
        UnpackTiffIndices(layout_.bits, SampleRunOf(layout_, rows, 0), indices_);
        if (layout_.Format() != PixelFormat::Palette)
            LookUpColours();
        return;
    }
    if (lab_)
        return ConvertLab(rows);
    for (int sample = 0; sample < layout_.ColourSamples(); ++sample)
        Unpack(rows, static_cast<std::size_t>(sample), sample);
    if (ycbcr_)
        ConvertYcbcr();
}

void TiffPixels::LookUpColours() {
    for (std::size_t i = 0; i < indices_.size(); ++i) {
        const PaletteEntry& colour = palette_[indices_[i]];
        channels_[0][i] = colour.red;
        channels_[1][i] = colour.green;
        channels_[2][i] = colour.blue;
    }
}

/// Of 16 bits the conversion sees the upper 8, rounded.
void TiffPixels::ConvertLab(const TiffRows& rows) {
    TiffLayout asSigned = layout_;
    asSigned.number = TiffNumber::Signed;
    const double step = layout_.bits == 16 ? 256 : 1;
    UnpackTiffSamples(layout_, SampleRunOf(layout_, rows, 0), channels_[0]);
    for (int sample = 1; sample <= 2; ++sample) {
        LoadTiffValues(asSigned, SampleRunOf(layout_, rows, sample), values_);
        std::ranges::transform(
            values_, channels_[static_cast<std::size_t>(sample)].begin(), [step](double value) {
                return static_cast<std::uint8_t>(std::min<long>(std::lround(value / step), 127));
            });
    }
    std::array<std::uint8_t, 3> rgb{};
    for (std::size_t i = 0; i < channels_[0].size(); ++i) {
        lab_->ToRgb(channels_[0][i], static_cast<std::int8_t>(channels_[1][i]),
                    static_cast<std::int8_t>(channels_[2][i]), rgb.data());
        for (std::size_t colour = 0; colour < rgb.size(); ++colour)
            channels_[colour][i] = rgb[colour];
    }
}

void TiffPixels::ConvertYcbcr() {
    std::array<std::uint8_t, 3> rgb{};
    for (std::size_t i = 0; i < channels_[0].size(); ++i) {
        ycbcr_->ToRgb(channels_[0][i], channels_[1][i], channels_[2][i], rgb.data());
        for (std::size_t colour = 0; colour < rgb.size(); ++colour)
            channels_[colour][i] = rgb[colour];
    }
}

void TiffPixels::Unpack(const TiffRows& rows, std::size_t channel, int sample) {
    const TiffSampleRun run = SampleRunOf(layout_, rows, sample);
    const bool isAlpha = channel == AlphaChannel;
    if (!layout_.IsStretched())
        return UnpackTiffSamples(layout_, run, channels_[channel]);
    LoadTiffValues(layout_, run, values_);
    StretchTiffValues(values_, isAlpha ? ranges_.alpha : ranges_.colours, channels_[channel]);
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
    case TiffColour::Cmyk:
        for (std::size_t i = 0; i < 3; ++i)
            rgb[i] =
                static_cast<std::uint8_t>((255 - channels_[i][pixel]) * (255 - channels_[3][pixel]) / 255);
        return;
    case TiffColour::Rgb:
    case TiffColour::Indexed:
    case TiffColour::Lab:
    case TiffColour::Ycbcr:
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
