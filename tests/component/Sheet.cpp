#include "tests/component/Sheet.h"

#include <png.h>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace {

constexpr std::size_t PaletteSize = 256;

Palette NoisePalette() {
    Palette palette(PaletteSize);
    for (std::size_t i = 0; i < palette.size(); ++i)
        palette[i] = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(255 - i),
                      static_cast<std::uint8_t>(i * 7), 255};
    palette[0].alpha = 0;
    palette[1].alpha = 128;
    return palette;
}

png_uint_32 PngFormatOf(PixelFormat format) {
    switch (format) {
    case PixelFormat::Grey:
        return PNG_FORMAT_GRAY;
    case PixelFormat::Palette:
        return PNG_FORMAT_RGBA_COLORMAP;
    case PixelFormat::Rgb:
        return PNG_FORMAT_RGB;
    case PixelFormat::Rgba:
        return PNG_FORMAT_RGBA;
    }
    throw std::logic_error("no such format");
}

void Require(bool succeeded, const png_image& image) {
    if (!succeeded)
        throw std::runtime_error(image.message);
}

} // namespace

Sheet MakeSheet(PixelFormat format, std::int32_t width, std::int32_t height, unsigned seed) {
    Sheet sheet{format, width, height, {}, {}};
    if (format == PixelFormat::Palette)
        sheet.palette = NoisePalette();
    std::mt19937 noise(seed);
    std::uniform_int_distribution<int> sample(
        0, format == PixelFormat::Palette ? static_cast<int>(PaletteSize) - 1 : 255);
    sheet.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                        static_cast<std::size_t>(BytesPerPixel(format)));
    std::generate(sheet.pixels.begin(), sheet.pixels.end(),
                  [&] { return static_cast<std::uint8_t>(sample(noise)); });
    return sheet;
}

Sheet MakeBlankSheet(std::int32_t width, std::int32_t height) {
    Sheet sheet{PixelFormat::Rgb, width, height, {}, {}};
    sheet.pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3, 77);
    return sheet;
}

void WritePng(const Sheet& sheet, const std::filesystem::path& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(sheet.width);
    image.height = static_cast<png_uint_32>(sheet.height);
    image.format = PngFormatOf(sheet.format);
    image.colormap_entries = static_cast<png_uint_32>(sheet.palette.size());
    Require(png_image_write_to_file(&image, file.c_str(), 0, sheet.pixels.data(), 0, sheet.palette.data()) !=
                0,
            image);
}

std::vector<std::uint8_t> ReadPngAsRgba(const std::vector<std::uint8_t>& png) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    Require(png_image_begin_read_from_memory(&image, png.data(), png.size()) != 0, image);
    image.format = PNG_FORMAT_RGBA;
    std::vector<std::uint8_t> pixels(PNG_IMAGE_SIZE(image));
    Require(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) != 0, image);
    return pixels;
}

std::vector<std::uint8_t> AsRgba(const Sheet& sheet) {
    std::vector<std::uint8_t> rgba;
    rgba.reserve(static_cast<std::size_t>(sheet.width) * static_cast<std::size_t>(sheet.height) * 4);
    const auto step = static_cast<std::size_t>(BytesPerPixel(sheet.format));
    for (std::size_t at = 0; at < sheet.pixels.size(); at += step) {
        const std::uint8_t* p = &sheet.pixels[at];
        PaletteEntry pixel{p[0], p[0], p[0], 255};
        if (sheet.format == PixelFormat::Palette)
            pixel = sheet.palette.at(p[0]);
        else if (step >= 3)
            pixel = {p[0], p[1], p[2], step == 4 ? p[3] : std::uint8_t{255}};
        rgba.insert(rgba.end(), {pixel.red, pixel.green, pixel.blue, pixel.alpha});
    }
    return rgba;
}
