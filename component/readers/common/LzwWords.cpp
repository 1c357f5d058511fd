#include "component/readers/common/LzwWords.h"

#include <algorithm>

LzwWords::LzwWords(unsigned clearCode) : clearCode_(clearCode) {
    constexpr unsigned Bytes = 256;
    for (unsigned byte = 0; byte < std::min(clearCode, Bytes); ++byte)
        words_[byte] = {0, 1, static_cast<std::uint8_t>(byte), static_cast<std::uint8_t>(byte)};
    Clear();
}

void LzwWords::Clear() {
    known_ = EndCode() + 1;
    previous_ = NoCode;
}

bool LzwWords::Follow(unsigned code) {
    if (previous_ == NoCode ? code >= clearCode_ : !Learn(code))
        return false;
    if (words_[code].length == 0)
        return false; // a first code above all bytes
    previous_ = static_cast<int>(code);
    length_ = words_[code].length;
    given_ = 0;
    return true;
}

/// Learns the word that the code before and this one make, until all codes are known. False when nothing says
/// what the code means.
bool LzwWords::Learn(unsigned code) {
    const Word& before = words_[static_cast<std::size_t>(previous_)];
    const bool isNew = code == known_; // a word that begins with the one before and ends with its first byte
    if (code > known_ || (isNew && known_ == MostCodes))
        return false;
    if (known_ == MostCodes)
        return true;
    const std::uint8_t last = isNew ? before.first : words_[code].first;
    words_[known_++] = {static_cast<std::uint16_t>(previous_), static_cast<std::uint16_t>(before.length + 1),
                        before.first, last};
    return true;
}

/// The word of a code, which is as long as the span. It is known from its end.
void LzwWords::Spell(unsigned code, std::span<std::uint8_t> bytes) const {
    for (std::size_t at = bytes.size(); at-- > 0;) {
        bytes[at] = words_[code].last;
        code = words_[code].begin;
    }
}

std::size_t LzwWords::Pop(std::span<std::uint8_t> bytes) {
    const std::size_t count = std::min(length_ - given_, bytes.size());
    if (count == 0)
        return 0;
    if (count == length_) {
        Spell(static_cast<unsigned>(previous_), bytes.first(count));
    } else {
        if (given_ == 0)
            Spell(static_cast<unsigned>(previous_), std::span(cut_).first(length_));
        std::copy_n(cut_.begin() + static_cast<std::ptrdiff_t>(given_), count, bytes.begin());
    }
    given_ += count;
    return count;
}
