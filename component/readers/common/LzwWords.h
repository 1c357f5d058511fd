#pragma once

#include <array>
#include <cstdint>
#include <span>

/// The words that the codes of an LZW stream stand for, learnt while they are followed. Codes below the clear
/// code are words of one byte, the one after it ends the stream; how wide codes are is the format's affair.
class LzwWords {
public:
    static constexpr unsigned MostCodes = 4096;
    static constexpr unsigned MostBits = 12;

    explicit LzwWords(unsigned clearCode);

    unsigned ClearCode() const { return clearCode_; }
    unsigned EndCode() const { return clearCode_ + 1; }
    /// Codes that mean something at present.
    unsigned Known() const { return known_; }

    /// Forgets what was learnt, as after a clear code.
    void Clear();
    /// Takes a code that is neither of these two, after the word before was taken whole. False when it cannot
    /// be here.
    bool Follow(unsigned code);
    /// Gives of the last word what has not been given yet and fits, and answers how much that was.
    std::size_t Pop(std::span<std::uint8_t> bytes);

private:
    static constexpr int NoCode = -1;

    /// A word: that of another code and one byte more.
    struct Word {
        std::uint16_t begin;
        std::uint16_t length;
        std::uint8_t first;
        std::uint8_t last;
    };

    bool Learn(unsigned code);
    void Spell(unsigned code, std::span<std::uint8_t> bytes) const;

    const unsigned clearCode_;
    unsigned known_ = 0;
    int previous_ = NoCode; ///< the code before, unless the dictionary was cleared after it
    std::array<Word, MostCodes> words_{};
    std::array<std::uint8_t, MostCodes> cut_{}; ///< a word of which only a part fitted
    std::size_t given_ = 0;                     ///< of the last word
    std::size_t length_ = 0;                    ///< likewise
};
