#include "component/render/ExportText.h"

#include <cstddef>
#include <cstdint>

namespace {

constexpr std::string_view Replacement = "\xEF\xBF\xBD";

std::uint8_t ByteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<std::uint8_t>(text[at]) : std::uint8_t{0};
}

/// Length of the UTF-8 character that starts here; 0 where none does (stray, overlong, surrogate or too
/// large).
std::size_t CharacterLength(std::string_view text, std::size_t at) {
    const std::uint8_t first = ByteAt(text, at), second = ByteAt(text, at + 1);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xC2 && first < 0xE0 ? 2 : first >= 0xE0 && first < 0xF0 ? 3 : 4;
    if (first < 0xC2 || first > 0xF4)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((ByteAt(text, at + i) & 0xC0) != 0x80)
            return 0;
    const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool outside = (first == 0xED && second > 0x9F) || (first == 0xF4 && second > 0x8F);
    return overlong || outside ? 0 : length;
}

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
        const std::size_t length = CharacterLength(text, at);
        valid += length == 0 ? Replacement : text.substr(at, length);
        at += length == 0 ? 1 : length;
    }
    return valid;
}

std::string MarkupText(std::string_view text) {
    const std::string valid = ValidUtf8(text);
    std::string markup;
    for (std::size_t at = 0; at < valid.size();) {
        const std::size_t length = CharacterLength(valid, at);
        markup += MarkupOf(std::string_view(valid).substr(at, length));
        at += length;
    }
    return markup;
}
