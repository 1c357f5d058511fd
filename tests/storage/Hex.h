#pragma once

#include "base/Bytes.h"

#include <string>
#include <string_view>

/// The bytes of a hexadecimal text.
inline Bytes FromHex(std::string_view hex) {
    Bytes bytes;
    for (std::size_t at = 0; at + 1 < hex.size(); at += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(std::string(hex.substr(at, 2)), nullptr, 16)));
    return bytes;
}

inline Bytes BytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}
