#include "base/Bytes.h"

#include "base/ComponentError.h"

#include <sodium.h>

std::string HexText(ByteSpan bytes, bool upperCase) {
    const std::string_view digits = upperCase ? "0123456789ABCDEF" : "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes)
        (text += digits[byte >> 4U]) += digits[byte & 15U];
    return text;
}

void FillRandom(std::span<std::uint8_t> bytes) {
    // Safe to call again and from several threads.
    if (sodium_init() < 0)
        throw ComponentError(ErrorNumber::Failed, "The system's random generator is not available.");
    randombytes_buf(bytes.data(), bytes.size());
}
