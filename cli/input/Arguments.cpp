#include "cli/input/Arguments.h"

#include "base/CheckedNumbers.h"
#include "base/NumberText.h"
#include "cli/output/ExitStatus.h"
#include "coordinates/CoordinateText.h"

#include <optional>

namespace {

[[noreturn]] void Refuse(std::string_view option, std::string_view text, std::string_view expected) {
    throw UsageError(std::string(option) + ": '" + std::string(text) + "' is not " + std::string(expected) +
                     ".");
}

/// Both sides of the only separator; nothing when it is missing or not alone.
std::optional<std::pair<std::string_view, std::string_view>> SplitOnce(std::string_view text,
                                                                       char separator) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos || text.find(separator, at + 1) != std::string_view::npos)
        return std::nullopt;
    return std::pair{text.substr(0, at), text.substr(at + 1)};
}

std::optional<std::int32_t> WholeNumber(std::string_view text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    return TextToWholeNumber(text);
}

std::optional<Pair> NumbersWithComma(std::string_view text) {
    const auto parts = SplitOnce(text, ',');
    if (!parts)
        return std::nullopt;
    const auto first = TextToNumber(parts->first), second = TextToNumber(parts->second);
    if (!first || !second)
        return std::nullopt;
    return Pair{*first, *second};
}

} // namespace

double ParseNumber(std::string_view option, std::string_view text) {
    const auto value = TextToNumber(text);
    if (!value)
        Refuse(option, text, "a number such as 12.5");
    return *value;
}

PixelSize ParseSize(std::string_view option, std::string_view text) {
    const auto parts = SplitOnce(text, 'x');
    const auto width = parts ? WholeNumber(parts->first) : std::nullopt;
    const auto height = parts ? WholeNumber(parts->second) : std::nullopt;
    if (!width || !height || *width < 1 || *height < 1)
        Refuse(option, text, "a size in pixels such as 256x256");
    return {*width, *height};
}

PixelOffset ParseOffset(std::string_view option, std::string_view text) {
    const auto parts = SplitOnce(text, ',');
    const auto x = parts ? WholeNumber(parts->first) : std::nullopt;
    const auto y = parts ? WholeNumber(parts->second) : std::nullopt;
    if (!x || !y)
        Refuse(option, text, "a pair of whole pixels such as -5,12");
    return {*x, *y};
}

MeasuredPoint ParseMeasuredPoint(std::string_view option, std::string_view text, const PlaceForm& form) {
    const auto sides = SplitOnce(text, '=');
    const auto pixel = sides ? NumbersWithComma(sides->first) : std::nullopt;
    const auto place = !sides                         ? std::nullopt
                       : HasDirections(sides->second) ? ReadDirections(sides->second, form)
                                                      : NumbersWithComma(sides->second);
    if (!pixel || !place)
        Refuse(option, text,
               form.isLength
                   ? "of the form PX,PY=X,Y, such as 120,80=500000,6100000 or "
                     "\"120,80=N 6100000 E 500000\""
                   : "of the form PX,PY=X,Y, such as 120,80=12.5,55.75 or "
                     "\"120,80=55\u00B045'N 12\u00B030'E\" (longitude first, unless letters say otherwise)");
    const Pair world = form.Taken(*place);
    return {world.x, world.y, pixel->x, pixel->y, {}};
}

ReferencePoint ParseReferencePoint(std::string_view option, std::string_view text, const PlaceForm& form) {
    const MeasuredPoint point = ParseMeasuredPoint(option, text, form);
    try {
        return {point.x, point.y, CheckedRound<std::int32_t>(point.pixelX),
                CheckedRound<std::int32_t>(point.pixelY)};
    } catch (const ComponentError&) {
        Refuse(option, text, "a pixel that a map can have");
    }
}

std::pair<std::string, std::string> ParseKeyValue(std::string_view text) {
    const std::size_t at = text.find('=');
    if (at == std::string_view::npos || at == 0)
        Refuse("KEY=VALUE", text, "a key, an equals sign and a value, such as author=Smith");
    return {std::string(text.substr(0, at)), std::string(text.substr(at + 1))};
}
