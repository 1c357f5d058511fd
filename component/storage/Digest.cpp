#include "component/storage/Digest.h"

#include <xxhash.h>

#include <cstring>

Digest PlainDigest(ByteSpan bytes, std::uint64_t seed) {
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, XXH3_128bits_withSeed(bytes.data(), bytes.size(), seed));
    Digest digest;
    static_assert(sizeof(canonical.digest) == sizeof(digest));
    std::memcpy(digest.data(), canonical.digest, digest.size());
    return digest;
}
