#include "base/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace {

/// The whole text as a number of the kind.
template <class Number>
std::optional<Number> Parse(std::string_view text) {
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stop == end ? std::optional(value) : std::nullopt;
}

} // namespace

std::string NumberToText(double value) {
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), result.ptr};
}

std::optional<double> TextToNumber(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return std::nullopt;
    text = text.substr(first, text.find_last_not_of(blanks) - first + 1);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-'))
            return std::nullopt;
    }
    const auto value = Parse<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::int32_t> TextToWholeNumber(std::string_view text) {
    return Parse<std::int32_t>(text);
}
