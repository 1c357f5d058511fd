#include "cli/input/SecretText.h"

#include <sodium.h>

namespace {

// The whole capacity: a short text that was moved away leaves its bytes in the string object.
void Wipe(std::string& text) {
    text.resize(text.capacity());
    sodium_memzero(text.data(), text.size());
    text.clear();
}

} // namespace

SecretText::SecretText(std::string text) {
    text_.swap(text);
    Wipe(text);
}

SecretText::~SecretText() {
    Wipe(text_);
}

SecretText::SecretText(SecretText&& other) noexcept {
    text_.swap(other.text_);
    Wipe(other.text_);
}

SecretText& SecretText::operator=(SecretText&& other) noexcept {
    if (this != &other) {
        text_.swap(other.text_);
        Wipe(other.text_);
    }
    return *this;
}
