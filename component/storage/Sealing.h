#pragma once

#include "base/Secret.h"
#include "component/storage/Digest.h"

#include <cstdint>
#include <string>

/// Cost of turning a key text into keys: Argon2id13 passes and memory.
struct KeyCost {
    std::uint32_t operations = 3;          ///< 1 to 4
    std::uint32_t memoryKiB = 256U * 1024; ///< 8 to 512 MiB

    bool IsAcceptable() const;
    bool operator==(const KeyCost&) const = default;
};

using Salt = std::array<std::uint8_t, 16>;
using LibraryId = std::array<std::uint8_t, 16>;
using HeaderMac = std::array<std::uint8_t, 32>;
/// Nonce (24), sealed data key (32), tag (16).
using WrappedKey = std::array<std::uint8_t, 72>;

/// Bytes that sealing adds to a blob: nonce 24 in front, tag 16 behind.
inline constexpr std::size_t SealOverhead = 40;

/// The key text as it enters the derivation: Unicode NFC in UTF-8, nothing trimmed or folded. Bytes that are
/// no UTF-8 stay as they are. From the first key on this process leaves no core dump.
SecretText NormalizedKey(const std::string& key);

/// The two keys that a key text gives: one wraps the data key, one authenticates the header.
struct DerivedKeys {
    Secret wrap{32};
    Secret mac{32};
};

/// Argon2id13 over the normalised key text. Throws OutOfMemory.
DerivedKeys DeriveKeys(const std::string& key, const Salt& salt, const KeyCost& cost);

/// A random data key, and the data key under a wrapping key, bound to the head of the file header.
Secret NewDataKey();
WrappedKey WrapDataKey(const Secret& dataKey, const DerivedKeys& keys, ByteSpan headerHead);
/// False when the wrapped key does not open under these keys.
bool UnwrapDataKey(const WrappedKey& wrapped, const DerivedKeys& keys, ByteSpan headerHead, Secret& dataKey);

/// Keyed BLAKE2b-256.
HeaderMac KeyedHash(ByteSpan bytes, const Secret& key);
bool EqualInConstantTime(const HeaderMac& a, const HeaderMac& b);

/// A key of its own for each use of the data key.
enum class KeyUse : std::uint64_t { Blobs = 1, Records = 2, Root = 3 };
Secret Subkey(const Secret& dataKey, KeyUse use);

/// nonce | ciphertext | tag by XChaCha20-Poly1305 with a fresh random nonce; `bound` is authenticated too.
Bytes Seal(ByteSpan plain, ByteSpan bound, const Secret& key);
/// False when the bytes were not sealed under this key with this binding.
bool Unseal(ByteSpan sealed, ByteSpan bound, const Secret& key, Bytes& plain);

/// Tells whether a key text is the one that was given before, without keeping the text: a save under the
/// same key then needs no key derivation.
class RememberedKey {
public:
    RememberedKey();

    /// An empty text stands for "no key".
    void Remember(const std::string& key);
    bool Is(const std::string& key) const;

private:
    HeaderMac Trace(const std::string& key) const;

    Secret secret_; ///< random, of this object alone
    HeaderMac trace_{};
};
