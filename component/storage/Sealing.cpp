#include "component/storage/Sealing.h"

#include "base/ComponentError.h"

#include <sodium.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif
#include <sys/resource.h>
#include <utf8proc.h>

#include <cstring>
#include <new>
#include <vector>

namespace {

constexpr char SubkeyContext[] = "Atlavex1";

/// A core dump would carry the keys to the disk, and a debugger of the same user read them.
void ForbidCoreDumps() {
#ifdef __linux__
    prctl(PR_SET_DUMPABLE, 0);
#endif
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

} // namespace

bool KeyCost::IsAcceptable() const {
    return operations >= 1 && operations <= 4 && memoryKiB >= 8U * 1024 && memoryKiB <= 512U * 1024;
}

SecretText NormalizedKey(const std::string& key) {
    if (!key.empty())
        ForbidCoreDumps();
    constexpr auto options = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE);
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(key.data());
    const auto size = static_cast<utf8proc_ssize_t>(key.size());
    const utf8proc_ssize_t most = utf8proc_decompose(bytes, size, nullptr, 0, options);
    if (most < 0)
        return SecretText(key);
    // A buffer of our own: the library's would be made shorter, and its end given back as it is.
    std::vector<utf8proc_int32_t> letters(static_cast<std::size_t>(most) + 1);
    utf8proc_decompose(bytes, size, letters.data(), most, options);
    const utf8proc_ssize_t length = utf8proc_reencode(letters.data(), most, options);
    const auto* composed = reinterpret_cast<const char*>(letters.data());
    SecretText text =
        length < 0 ? SecretText(key) : SecretText(std::string(composed, static_cast<std::size_t>(length)));
    sodium_memzero(letters.data(), letters.size() * sizeof(letters.front()));
    return text;
}

DerivedKeys DeriveKeys(const std::string& key, const Salt& salt, const KeyCost& cost) {
    static_assert(std::tuple_size_v<Salt> == crypto_pwhash_SALTBYTES);
    Secret both(64);
    const SecretText normalized = NormalizedKey(key);
    const int failed = crypto_pwhash(both.Data(), both.Size(), normalized.Text().data(),
                                     normalized.Text().size(), salt.data(), cost.operations,
                                     std::size_t{cost.memoryKiB} * 1024, crypto_pwhash_ALG_ARGON2ID13);
    if (failed != 0)
        throw ComponentError(ErrorNumber::OutOfMemory,
                             "There is not enough memory to check the encryption key.");
    DerivedKeys keys;
    std::memcpy(keys.wrap.Data(), both.Data(), 32);
    std::memcpy(keys.mac.Data(), both.Data() + 32, 32);
    return keys;
}

Secret NewDataKey() {
    Secret key(32);
    FillRandom({key.Data(), key.Size()});
    return key;
}

WrappedKey WrapDataKey(const Secret& dataKey, const DerivedKeys& keys, ByteSpan headerHead) {
    const Bytes sealed = Seal({dataKey.Data(), dataKey.Size()}, headerHead, keys.wrap);
    WrappedKey wrapped{};
    std::memcpy(wrapped.data(), sealed.data(), wrapped.size());
    return wrapped;
}

bool UnwrapDataKey(const WrappedKey& wrapped, const DerivedKeys& keys, ByteSpan headerHead, Secret& dataKey) {
    return crypto_aead_xchacha20poly1305_ietf_decrypt(
               dataKey.Data(), nullptr, nullptr, wrapped.data() + 24, wrapped.size() - 24, headerHead.data(),
               headerHead.size(), wrapped.data(), keys.wrap.Data()) == 0;
}

HeaderMac KeyedHash(ByteSpan bytes, const Secret& key) {
    HeaderMac mac{};
    crypto_generichash(mac.data(), mac.size(), bytes.data(), bytes.size(), key.Data(), key.Size());
    return mac;
}

bool EqualInConstantTime(const HeaderMac& a, const HeaderMac& b) {
    return sodium_memcmp(a.data(), b.data(), a.size()) == 0;
}

Secret Subkey(const Secret& dataKey, KeyUse use) {
    Secret key(32);
    crypto_kdf_derive_from_key(key.Data(), key.Size(), static_cast<std::uint64_t>(use), SubkeyContext,
                               dataKey.Data());
    return key;
}

Bytes Seal(ByteSpan plain, ByteSpan bound, const Secret& key) {
    static_assert(SealOverhead ==
                  crypto_aead_xchacha20poly1305_ietf_NPUBBYTES + crypto_aead_xchacha20poly1305_ietf_ABYTES);
    Bytes sealed(plain.size() + SealOverhead);
    FillRandom(std::span(sealed).first(24));
    crypto_aead_xchacha20poly1305_ietf_encrypt(sealed.data() + 24, nullptr, plain.data(), plain.size(),
                                               bound.data(), bound.size(), nullptr, sealed.data(),
                                               key.Data());
    return sealed;
}

bool Unseal(ByteSpan sealed, ByteSpan bound, const Secret& key, Bytes& plain) {
    if (sealed.size() < SealOverhead)
        return false;
    plain.resize(sealed.size() - SealOverhead);
    return crypto_aead_xchacha20poly1305_ietf_decrypt(plain.data(), nullptr, nullptr, sealed.data() + 24,
                                                      sealed.size() - 24, bound.data(), bound.size(),
                                                      sealed.data(), key.Data()) == 0;
}

RememberedKey::RememberedKey() : secret_(NewDataKey()) {
    Remember({});
}

void RememberedKey::Remember(const std::string& key) {
    trace_ = Trace(key);
}

bool RememberedKey::Is(const std::string& key) const {
    return EqualInConstantTime(trace_, Trace(key));
}

HeaderMac RememberedKey::Trace(const std::string& key) const {
    return KeyedHash(AsBytes(NormalizedKey(key).Text()), secret_);
}
