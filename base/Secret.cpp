#include "base/Secret.h"

#include "base/ComponentError.h"

#include <sodium.h>

#include <new>

namespace {

// The whole capacity: a short text that was moved away leaves its bytes in the string object.
void Wipe(std::string& text) {
    text.resize(text.capacity());
    sodium_memzero(text.data(), text.size());
    text.clear();
}

} // namespace

void Secret::Wiper::operator()(std::uint8_t* bytes) const {
    sodium_free(bytes);
}

Secret::Secret(std::size_t size) : size_(size) {
    // Safe to call again and from several threads.
    if (sodium_init() < 0)
        throw ComponentError(ErrorNumber::Failed, "The encryption library could not be started.");
    bytes_.reset(static_cast<std::uint8_t*>(sodium_malloc(size)));
    if (!bytes_)
        throw std::bad_alloc();
}

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
