#include "component/Worldfile.h"

#include "base/ComponentError.h"
#include "base/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <string>
#include <utility>

namespace {

constexpr std::size_t NumbersInFile = 6;

/// Six numbers of any sensible length fit a hundred times over; whatever is larger is no worldfile.
constexpr std::size_t LargestFile = 65536;

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

[[noreturn]] void Invalid(std::string_view fileName, const std::string& reason) {
    throw ComponentError(ErrorNumber::WorldfileInvalid,
                         "The worldfile \"" + std::string(fileName) + "\" " + reason);
}

bool IsBlank(std::string_view line) {
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

/// The line as it may be shown in a message: not endless, and without bytes that are no letters.
std::string Shown(std::string_view line) {
    constexpr std::size_t longest = 40;
    std::string text(line.substr(0, longest));
    while (!text.empty() && text.back() == '\r')
        text.pop_back();
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return "\"" + text + (line.size() > longest ? "...\"" : "\"");
}

std::string ReadBounded(const std::filesystem::path& file) {
    // The kind is asked first: opening a pipe would wait for somebody to write into it.
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found)
        throw ComponentError(ErrorNumber::FileNotFound, "There is no file \"" + file.string() + "\".");
    if (status.type() != std::filesystem::file_type::regular)
        throw ComponentError(ErrorNumber::FileNotReadable,
                             "\"" + file.string() + "\" cannot be read: it is not a file that can be read.");
    std::ifstream stream(file, std::ios::binary);
    std::string text(LargestFile + 1, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (stream.bad() || (!stream && !stream.eof()))
        throw ComponentError(ErrorNumber::FileNotReadable, "\"" + file.string() + "\" cannot be read.");
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

/// Pixel of the stored image as p·x + q·y + r of a pixel (x, y) of the displayed one.
struct StoredPixel {
    double columnByX = 0, columnByY = 0, column = 0;
    double rowByX = 0, rowByY = 0, row = 0;
};

StoredPixel StoredPixelOf(Orientation orientation, double right, double bottom) {
    switch (orientation) {
    case Orientation::TopLeft:
        break;
    case Orientation::TopRight:
        return {-1, 0, right, 0, 1, 0};
    case Orientation::BottomRight:
        return {-1, 0, right, 0, -1, bottom};
    case Orientation::BottomLeft:
        return {1, 0, 0, 0, -1, bottom};
    case Orientation::LeftTop:
        return {0, 1, 0, 1, 0, 0};
    case Orientation::RightTop:
        return {0, 1, 0, -1, 0, right};
    case Orientation::RightBottom:
        return {0, -1, bottom, -1, 0, right};
    case Orientation::LeftBottom:
        return {0, -1, bottom, 1, 0, 0};
    }
    return {1, 0, 0, 0, 1, 0};
}

ReferencePoint PointAt(const Affine& affine, std::int32_t pixelX, std::int32_t pixelY) {
    const double px = pixelX, py = pixelY;
    const ReferencePoint point{affine.a * px + affine.b * py + affine.c,
                               affine.d * px + affine.e * py + affine.f, pixelX, pixelY};
    if (!std::isfinite(point.x) || !std::isfinite(point.y))
        throw ComponentError(ErrorNumber::WorldfileInvalid,
                             "The numbers of the worldfile are too large for coordinates.");
    return point;
}

} // namespace

Affine ParseWorldfile(std::string_view text, std::string_view fileName) {
    if (text.size() > LargestFile)
        Invalid(fileName, "is too large for a worldfile.");
    if (text.starts_with(ByteOrderMark))
        text.remove_prefix(ByteOrderMark.size());
    std::array<double, NumbersInFile> numbers{};
    std::size_t count = 0, lineNumber = 0;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        ++lineNumber;
        if (IsBlank(line))
            continue;
        if (count == NumbersInFile)
            Invalid(fileName, "has more than six numbers: line " + std::to_string(lineNumber) + " is " +
                                  Shown(line) + ".");
        const auto number = TextToNumber(line);
        if (!number)
            Invalid(fileName, "has no number with a decimal point on line " + std::to_string(lineNumber) +
                                  ", but " + Shown(line) + ".");
        numbers[count++] = *number;
    }
    if (count != NumbersInFile)
        Invalid(fileName, "ends after line " + std::to_string(lineNumber) + " with " + std::to_string(count) +
                              " of the six numbers.");
    const auto [a, d, b, e, c, f] = numbers;
    return {a, b, c, d, e, f};
}

Affine ReadWorldfile(const std::filesystem::path& file) {
    return ParseWorldfile(ReadBounded(file), file.string());
}

Affine TurnWorldfile(const Affine& stored, Orientation orientation, std::int32_t width, std::int32_t height) {
    const StoredPixel at = StoredPixelOf(orientation, width - 1.0, height - 1.0);
    return {stored.a * at.columnByX + stored.b * at.rowByX,
            stored.a * at.columnByY + stored.b * at.rowByY,
            stored.a * at.column + stored.b * at.row + stored.c,
            stored.d * at.columnByX + stored.e * at.rowByX,
            stored.d * at.columnByY + stored.e * at.rowByY,
            stored.d * at.column + stored.e * at.row + stored.f};
}

std::array<ReferencePoint, 3> WorldfilePoints(const Affine& affine) {
    return {PointAt(affine, 1, 1), PointAt(affine, 1, 100), PointAt(affine, 100, 100)};
}
