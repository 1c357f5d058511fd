#include "component/readers/tiff/TiffWords.h"

#include <algorithm>

TiffWords::TiffWords() {
    for (unsigned byte = 0; byte < ClearCode; ++byte)
        words_[byte] = {0, 1, static_cast<std::uint8_t>(byte), static_cast<std::uint8_t>(byte)};
    Clear();
}

void TiffWords::Clear() {
    known_ = EndCode + 1;
    codeBits_ = 9;
    previous_ = -1;
}

bool TiffWords::Follow(unsigned code) {
    if (code == ClearCode) {
        Clear();
        return true;
    }
    if (previous_ < 0 ? code > ClearCode : !Learn(code))
        return false;
    previous_ = static_cast<int>(code);
    Spell(code);
    return true;
}

/// Learns the word that the code before and this one make, until all codes are known. False when nothing says
/// what the code means.
bool TiffWords::Learn(unsigned code) {
    const Word& before = words_[static_cast<std::size_t>(previous_)];
    const bool isNew = code == known_; // a word that begins with the one before and ends with its first byte
    if (code > known_ || (isNew && known_ == MostCodes))
        return false;
    if (known_ == MostCodes)
        return true;
    const std::uint8_t last = isNew ? before.first : words_[code].first;
    words_[known_++] = {static_cast<std::uint16_t>(previous_), static_cast<std::uint16_t>(before.length + 1),
                        before.first, last};
    if (known_ + 1 == 1U << codeBits_ && codeBits_ < MostBits)
        ++codeBits_;
    return true;
}

/// A word is known from its end.
void TiffWords::Spell(unsigned code) {
    rest_.resize(words_[code].length);
    restAt_ = 0;
    for (std::size_t at = rest_.size(); at-- > 0;) {
        rest_[at] = words_[code].last;
        code = words_[code].begin;
    }
}

std::size_t TiffWords::TakeRest(std::span<std::uint8_t> bytes) {
    const std::size_t count = std::min(rest_.size() - restAt_, bytes.size());
    std::copy_n(rest_.begin() + static_cast<std::ptrdiff_t>(restAt_), count, bytes.begin());
    restAt_ += count;
    return count;
}
