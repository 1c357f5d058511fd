#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Bytes as they stand in a file.
using Bytes = std::vector<std::uint8_t>;
using ByteSpan = std::span<const std::uint8_t>;

inline ByteSpan AsBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// Two hexadecimal digits a byte, in lower case unless upper case is wanted.
std::string HexText(ByteSpan bytes, bool upperCase = false);

/// Fills the bytes from the system's secure generator. By any thread.
void FillRandom(std::span<std::uint8_t> bytes);
