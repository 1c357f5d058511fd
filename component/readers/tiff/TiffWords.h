#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// The words that the LZW codes of a TIFF file stand for, learnt while they are followed.
class TiffWords {
public:
    static constexpr unsigned ClearCode = 256;
    static constexpr unsigned EndCode = 257;

    TiffWords();

    /// The width of the next code. It grows one code before it has to.
    unsigned CodeBits() const { return codeBits_; }
    /// Takes the next code, unless it is the end code. The word before must have been taken whole. False when
    /// the code cannot be here.
    bool Follow(unsigned code);
    /// Gives what fits of the last word's rest and answers how much that was.
    std::size_t TakeRest(std::span<std::uint8_t> bytes);

private:
    static constexpr unsigned MostCodes = 4096;
    static constexpr unsigned MostBits = 12;

    /// A word of bytes: that of another code and one byte more.
    struct Word {
        std::uint16_t begin;
        std::uint16_t length;
        std::uint8_t first;
        std::uint8_t last;
    };

    void Clear();
    bool Learn(unsigned code);
    void Spell(unsigned code);

    std::array<Word, MostCodes> words_{};
    unsigned known_ = 0; ///< codes that mean something
    unsigned codeBits_ = 0;
    int previous_ = -1; ///< the code before, or -1 after a clear code
    std::vector<std::uint8_t> rest_;
    std::size_t restAt_ = 0;
};
