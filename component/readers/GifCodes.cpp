#include "component/readers/GifCodes.h"

#include <algorithm>

namespace {

constexpr unsigned MostIndices = 256;

} // namespace

GifCodes::GifCodes(std::FILE* stream) : stream_(stream) {
    const int width = std::fgetc(stream);
    if (width == EOF || width < 1 || width > MostFirstWidth) {
        outcome_ = width == EOF ? Outcome::FileEnds : Outcome::Contradicted;
        return;
    }
    clearCode_ = 1U << width;
    for (unsigned index = 0; index < std::min(clearCode_, MostIndices); ++index)
        words_[index] = {0, 1, static_cast<std::uint8_t>(index), static_cast<std::uint8_t>(index)};
    Clear();
}

void GifCodes::Clear() {
    known_ = clearCode_ + 2; // the indices, this code and the end mark
    width_ = 1;
    while (1U << width_ < known_)
        ++width_;
    previous_ = -1;
}

GifCodes::Outcome GifCodes::NextBlock() {
    const int length = std::fgetc(stream_);
    if (length == EOF)
        return Outcome::FileEnds;
    if (length == 0)
        return Outcome::PixelsEnd;
    blockAt_ = 0;
    blockEnd_ = std::fread(block_.data(), 1, static_cast<std::size_t>(length), stream_);
    return blockEnd_ > 0 ? Outcome::Done : Outcome::FileEnds;
}

GifCodes::Outcome GifCodes::NextCode(unsigned& code) {
    while (bitCount_ < width_) {
        if (blockAt_ == blockEnd_)
            if (const Outcome outcome = NextBlock(); outcome != Outcome::Done)
                return outcome;
        bits_ |= std::uint32_t{block_[blockAt_++]} << bitCount_;
        bitCount_ += 8;
    }
    code = bits_ & ((1U << width_) - 1);
    bits_ >>= width_;
    bitCount_ -= width_;
    return Outcome::Done;
}

/// Takes a code that is no clear code and no end mark. False when it cannot be here.
bool GifCodes::Follow(unsigned code) {
    if (code >= MostIndices && code < clearCode_)
        return false; // an index that no palette has
    if (previous_ >= 0 && !Learn(code))
        return false;
    if (previous_ < 0 && code >= clearCode_)
        return false;
    if (known_ == 1U << width_ && width_ < MostBits)
        ++width_;
    previous_ = static_cast<int>(code);
    return true;
}

/// Learns the word that the code before and this one make, until all codes are known. False when nothing says
/// what the code means.
bool GifCodes::Learn(unsigned code) {
    const Word& before = words_[static_cast<std::size_t>(previous_)];
    const bool isNew = code == known_; // a word that begins with the one before and ends with its first index
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
void GifCodes::Spell(unsigned code, std::span<std::uint8_t> indices) const {
    for (std::size_t at = indices.size(); at-- > 0;) {
        indices[at] = words_[code].last;
        code = words_[code].begin;
    }
}

/// Gives the word of a code, or what fits of it; the rest is kept. Answers how much was given.
std::size_t GifCodes::Put(unsigned code, std::span<std::uint8_t> indices) {
    const std::size_t length = words_[code].length;
    if (length <= indices.size()) {
        Spell(code, indices.first(length));
        return length;
    }
    rest_.resize(length);
    Spell(code, rest_);
    std::copy_n(rest_.begin(), indices.size(), indices.begin());
    restAt_ = indices.size();
    return indices.size();
}

GifCodes::Outcome GifCodes::Read(std::span<std::uint8_t> indices) {
    std::size_t done = std::min(rest_.size() - restAt_, indices.size());
    std::copy_n(rest_.begin() + static_cast<std::ptrdiff_t>(restAt_), done, indices.begin());
    restAt_ += done;
    while (done < indices.size() && outcome_ == Outcome::Done) {
        unsigned code = 0;
        outcome_ = NextCode(code);
        if (outcome_ != Outcome::Done)
            break;
        if (code == clearCode_)
            Clear();
        else if (code == clearCode_ + 1)
            outcome_ = Outcome::PixelsEnd;
        else if (!Follow(code))
            outcome_ = Outcome::Contradicted;
        else
            done += Put(code, indices.subspan(done));
    }
    return done == indices.size() ? Outcome::Done : outcome_;
}
