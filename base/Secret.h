#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

/// Bytes that must not reach a swap file or a core dump, wiped when they go.
class Secret {
public:
    explicit Secret(std::size_t size);
    Secret(Secret&&) noexcept = default;
    Secret& operator=(Secret&&) noexcept = default;

    std::uint8_t* Data() { return bytes_.get(); }
    const std::uint8_t* Data() const { return bytes_.get(); }
    std::size_t Size() const { return size_; }

private:
    struct Wiper {
        void operator()(std::uint8_t* bytes) const;
    };
    std::unique_ptr<std::uint8_t, Wiper> bytes_;
    std::size_t size_;
};

/// A key text in memory, overwritten when it is no longer needed (as far as copies inside other libraries
/// allow).
class SecretText {
public:
    SecretText() = default;
    /// Takes the text over; what is left of it in the argument is overwritten.
    explicit SecretText(std::string text);
    ~SecretText();
    SecretText(SecretText&& other) noexcept;
    SecretText& operator=(SecretText&& other) noexcept;

    const std::string& Text() const { return text_; }
    bool Empty() const { return text_.empty(); }

private:
    std::string text_;
};
