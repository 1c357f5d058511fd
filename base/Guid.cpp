#include "base/Guid.h"

#include "base/ComponentError.h"

#include <sodium.h>

#include <algorithm>
#include <array>

namespace {

constexpr std::string_view Digits = "0123456789ABCDEF";

/// 16 random bytes with the marks of version 4 and of the common variant (RFC 4122, section 4.4).
std::array<unsigned char, 16> RandomBytes() {
    // Safe to call again and from several threads.
    if (sodium_init() < 0)
        throw ComponentError(ErrorNumber::Failed, "The system's random generator is not available.");
    std::array<unsigned char, 16> bytes{};
    randombytes_buf(bytes.data(), bytes.size());
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
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
    std::string text;
    for (const unsigned char byte : RandomBytes()) {
        if (text.size() == 8 || text.size() == 13 || text.size() == 18 || text.size() == 23)
            text += '-';
        text += Digits[byte >> 4];
        text += Digits[byte & 0x0F];
    }
    return text;
}

bool IsGUIDText(std::string_view text) {
    const std::string_view trimmed = WithoutBlanks(text);
    return trimmed.size() >= 32 && trimmed.size() <= 36 && std::ranges::all_of(trimmed, IsGUIDCharacter);
}
