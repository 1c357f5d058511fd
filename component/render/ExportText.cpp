#include "component/render/ExportText.h"

#include "base/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace {

constexpr std::string_view Replacement = "\xEF\xBF\xBD";

/// A control character that XML does not have, or that is better not passed on.
bool IsControl(char c) {
    const auto byte = static_cast<std::uint8_t>(c);
    return (byte < 0x20 && c != '\t' && c != '\n') || byte == 0x7F;
}

std::string_view MarkupOf(std::string_view character) {
    switch (character.front()) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return IsControl(character.front()) ? Replacement : character;
    }
}

} // namespace

std::string ValidUtf8(std::string_view text) {
    std::string valid;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = FirstCharacter(text.substr(at)).length;
        valid += length == 0 ? Replacement : text.substr(at, length);
        at += length == 0 ? 1 : length;
    }
    return valid;
}

std::string MarkupText(std::string_view text) {
    const std::string valid = ValidUtf8(text);
    std::string markup;
    for (std::size_t at = 0; at < valid.size();) {
        const std::size_t length = FirstCharacter(std::string_view(valid).substr(at)).length;
        markup += MarkupOf(std::string_view(valid).substr(at, length));
        at += length;
    }
    return markup;
}
