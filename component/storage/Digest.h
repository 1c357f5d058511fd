#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// Bytes as they stand in a file.
using Bytes = std::vector<std::uint8_t>;
using ByteSpan = std::span<const std::uint8_t>;

/// 16 bytes that tell whether a stored blob is the one that was written: XXH3-128 (canonical, most
/// significant byte first) in a plain file, the Poly1305 tag in a sealed one.
using Digest = std::array<std::uint8_t, 16>;

/// XXH3-128 of the bytes.
Digest PlainDigest(ByteSpan bytes, std::uint64_t seed = 0);

inline ByteSpan AsBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}
