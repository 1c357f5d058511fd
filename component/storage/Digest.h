#pragma once

#include "base/Bytes.h"

#include <array>

/// 16 bytes that tell whether a stored blob is the one that was written: XXH3-128 (canonical, most
/// significant byte first) in a plain file, the Poly1305 tag in a sealed one.
using Digest = std::array<std::uint8_t, 16>;

/// XXH3-128 of the bytes.
Digest PlainDigest(ByteSpan bytes, std::uint64_t seed = 0);
