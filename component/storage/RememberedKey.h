#pragma once

#include "component/storage/Sealing.h"

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
