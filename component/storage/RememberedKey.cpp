#include "component/storage/RememberedKey.h"

#include "component/storage/Digest.h"

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
    std::string normalized = NormalizedKey(key);
    const HeaderMac trace = KeyedHash(AsBytes(normalized), secret_);
    WipeText(normalized);
    return trace;
}
