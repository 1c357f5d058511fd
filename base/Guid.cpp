#include "base/Guid.h"

#include "base/Bytes.h"

#include <algorithm>
#include <array>

namespace {

/// 16 random bytes with the marks of version 4 and of the common variant (RFC 4122, section 4.4).
std::array<std::uint8_t, 16> RandomBytes() {
    std::array<std::uint8_t, 16> bytes{};
    FillRandom(bytes);
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);
    return bytes;
}

bool IsGUIDCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f') || c == '-';
}

std::string_view WithoutBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

} // namespace

std::string CreateGUID() {
    std::string text = HexText(RandomBytes(), true);
    for (const std::size_t hyphen : {8, 13, 18, 23})
        text.insert(hyphen, 1, '-');
    return text;
}

bool IsGUIDText(std::string_view text) {
    const std::string_view trimmed = WithoutBlanks(text);
    return trimmed.size() >= 32 && trimmed.size() <= 36 && std::ranges::all_of(trimmed, IsGUIDCharacter);
}
