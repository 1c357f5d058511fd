#pragma once

#include <string>

/// A key in memory, overwritten when it is no longer needed (as far as copies inside other libraries allow).
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
