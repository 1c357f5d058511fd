#include "tests/readers/ReferenceDecoder.h"
#include "component/readers/OpenImage.h"

#include "tests/support/RunProgram.h"
#include "tests/support/TempFolder.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

namespace {

constexpr std::string_view PillowScript = R"(
import struct, sys
from PIL import Image, ImageFile, ImageOps
Image.MAX_IMAGE_PIXELS = None
image = ImageOps.exif_transpose(Image.open(sys.argv[1])).convert("RGBA")
with open(sys.argv[2], "wb") as out:
    out.write(struct.pack("<ii", *image.size) + image.tobytes())
)";

PaletteEntry ToRgba(const std::uint8_t* stored, const ImageInfo& info) {
    PaletteEntry pixel;
    switch (info.format) {
    case PixelFormat::Grey:
        pixel = {stored[0], stored[0], stored[0], 255};
        break;
    case PixelFormat::Palette:
        if (stored[0] < info.palette.size())
            pixel = info.palette[stored[0]];
        else
            ADD_FAILURE() << "index " << int{stored[0]} << " of a palette of " << info.palette.size();
        break;
    case PixelFormat::Rgb:
        pixel = {stored[0], stored[1], stored[2], 255};
        break;
    case PixelFormat::Rgba:
        pixel = {stored[0], stored[1], stored[2], stored[3]};
        break;
    }
    return pixel;
}

/// Runs a reference decoder; a decoder that fails or is missing ends the test.
std::string RunOrThrow(const std::vector<std::string>& command, const std::string& input = {}) {
    ProgramResult result = RunProgram(command, input);
    if (result.status != 0)
        throw std::runtime_error(command.front() + " failed: " + result.err);
    return std::move(result.out);
}

int Difference(const std::uint8_t* a, const std::uint8_t* b, bool ignoreHiddenColours) {
    if (ignoreHiddenColours && a[3] == 0 && b[3] == 0)
        return 0;
    int largest = 0;
    for (int channel = 0; channel < 4; ++channel)
        largest = std::max(largest, std::abs(int{a[channel]} - int{b[channel]}));
    return largest;
}

std::string PixelText(const std::uint8_t* pixel) {
    std::string text = "(";
    for (int channel = 0; channel < 4; ++channel)
        text += (channel > 0 ? ", " : "") + std::to_string(int{pixel[channel]});
    return text + ")";
}

} // namespace

RgbaImage ReadAllRows(RowReader& reader, std::int32_t rowsAtOnce) {
    const ImageInfo& info = reader.Info();
    RgbaImage image{info.width, info.height, {}};
    image.pixels.resize(std::size_t{4} * static_cast<std::size_t>(info.width) *
                        static_cast<std::size_t>(info.height));
    std::uint8_t* target = image.pixels.data();
    const auto pixelBytes = static_cast<std::size_t>(BytesPerPixel(info.format));
    const std::size_t rowBytes = static_cast<std::size_t>(info.width) * pixelBytes;
    for (std::int32_t row = 0; row < info.height; row += rowsAtOnce) {
        const std::int32_t count = std::min(rowsAtOnce, info.height - row);
        std::vector<std::uint8_t> rows(rowBytes * static_cast<std::size_t>(count));
        reader.ReadRows(rows.data(), static_cast<std::ptrdiff_t>(rowBytes), count);
        for (std::size_t at = 0; at < rows.size(); at += pixelBytes, target += 4) {
            const PaletteEntry pixel = ToRgba(rows.data() + at, info);
            std::ranges::copy(std::array{pixel.red, pixel.green, pixel.blue, pixel.alpha}, target);
        }
    }
    return image;
}

RgbaImage DecodeWithEngine(const std::filesystem::path& file, std::int32_t rowsAtOnce) {
    return ReadAllRows(*OpenImage(file), rowsAtOnce);
}

RgbaImage DecodeWithPillow(const std::filesystem::path& file) {
    const TempFolder folder;
    const auto raw = folder / "pixels.raw";
    RunOrThrow({"/usr/bin/python3", "-", file.string(), raw.string()}, std::string(PillowScript));
    return ReadRawImage(raw);
}

RgbaImage DecodeWithImageMagick(const std::filesystem::path& file, const std::vector<std::string>& options) {
    const TempFolder folder;
    const auto raw = folder / "pixels.rgba";
    // In a Turkish locale it looks for "GİF" and knows no such format.
    std::vector<std::string> command{"/usr/bin/env", "LC_ALL=C.UTF-8", "/usr/bin/convert", "-quiet"};
    const auto append = [&command](const std::vector<std::string>& words) {
        command.insert(command.end(), words.begin(), words.end());
    };
    append(options);
    append({file.string() + "[0]"});
    // A PNG's gamma would make the colours linear ones, and converting them back would change the numbers.
    if (file.extension() == ".png")
        append({"-set", "colorspace", "sRGB"});
    append({"-auto-orient", "-colorspace", "sRGB", "+profile", "*", "-depth", "8"});
    append({"-write", "RGBA:" + raw.string(), "-format", "%w %h", "info:"});
    const std::string size = RunOrThrow(command);
    RgbaImage image;
    image.width = std::stoi(size);
    image.height = std::stoi(size.substr(size.find(' ')));
    const std::string pixels = ReadWholeFile(raw);
    image.pixels.assign(pixels.begin(), pixels.end());
    return image;
}

RgbaImage ReadRawImage(const std::filesystem::path& file) {
    const std::string content = ReadWholeFile(file);
    const auto number = [&content](std::size_t at) {
        std::int32_t value = 0;
        for (std::size_t byte = 4; byte-- > 0;)
            value = value * 256 + static_cast<std::uint8_t>(content.at(at + byte));
        return value;
    };
    return {number(0), number(4), {content.begin() + 8, content.end()}};
}

testing::AssertionResult SamePixels(const RgbaImage& actual, const RgbaImage& expected, Tolerance tolerance) {
    if (actual.width != expected.width || actual.height != expected.height)
        return testing::AssertionFailure() << actual.width << " x " << actual.height << " pixels, expected "
                                           << expected.width << " x " << expected.height;
    if (actual.pixels.size() != expected.pixels.size())
        return testing::AssertionFailure() << "the pixels do not fill the size";
    std::size_t differing = 0, first = 0;
    int largest = 0;
    for (std::size_t at = 0; at < actual.pixels.size(); at += 4) {
        const int difference =
            Difference(&actual.pixels[at], &expected.pixels[at], tolerance.ignoreHiddenColours);
        largest = std::max(largest, difference);
        if (difference > tolerance.perChannel && differing++ == 0)
            first = at;
    }
    if (differing == 0)
        return testing::AssertionSuccess();
    const std::size_t pixel = first / 4, width = static_cast<std::size_t>(actual.width);
    return testing::AssertionFailure()
           << differing << " pixels differ, by up to " << largest << "; first at column " << pixel % width
           << ", row " << pixel / width << ": " << PixelText(&actual.pixels[first]) << ", expected "
           << PixelText(&expected.pixels[first]);
}

std::vector<std::filesystem::path> ImagesWithTruth(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> images;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".rgba")
            images.push_back(entry.path().parent_path() / entry.path().stem());
    std::ranges::sort(images);
    EXPECT_FALSE(images.empty()) << "no images in " << folder;
    return images;
}

RgbaImage ReadTruth(const std::filesystem::path& image) {
    return ReadRawImage(image.string() + ".rgba");
}

void RunScript(const std::string& script, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"/usr/bin/python3",
                                     std::string(SOURCE_DIR) + "/tests/readers/" + script};
    command.insert(command.end(), arguments.begin(), arguments.end());
    RunOrThrow(command);
}
