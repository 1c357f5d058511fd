#pragma once

#include <cstddef>
#include <string_view>

/// The character that a text starts with.
struct Utf8Character {
    char32_t code = 0;
    std::size_t length =
        0; ///< in bytes; 0 where no character starts: stray, cut short, overlong, a surrogate
};

Utf8Character FirstCharacter(std::string_view text);
