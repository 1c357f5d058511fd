#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <span>
#include <vector>

/// Unpacks the pixels of one GIF frame: LZW codes of growing width in blocks of up to 255 bytes.
///
/// The width of the first codes may be larger than the 8 bits that indices need, as some writers make it;
/// indices above 255 are an error all the same.
class GifCodes {
public:
    enum class Outcome : std::uint8_t {
        Done,
        FileEnds,
        PixelsEnd,    ///< the frame's end mark or its last block comes before its last pixel
        Contradicted, ///< a code that cannot be here, or no width that codes can have
    };

    /// A first code needs one bit more than the width that the frame names, and all codes 12 at most.
    static constexpr int MostFirstWidth = 11;

    /// The stream stands at the width of the first codes and must outlive the object.
    explicit GifCodes(std::FILE* stream);

    /// The next indices, as many as fit. After any outcome but Done there are no more.
    Outcome Read(std::span<std::uint8_t> indices);

private:
    static constexpr unsigned MostCodes = 4096;
    static constexpr unsigned MostBits = 12;

    /// A word of indices: that of another code and one index more.
    struct Word {
        std::uint16_t begin;
        std::uint16_t length;
        std::uint8_t first;
        std::uint8_t last;
    };

    void Clear();
    Outcome NextCode(unsigned& code);
    Outcome NextBlock();
    bool Follow(unsigned code);
    bool Learn(unsigned code);
    std::size_t Put(unsigned code, std::span<std::uint8_t> indices);
    void Spell(unsigned code, std::span<std::uint8_t> indices) const;

    std::FILE* stream_;
    Outcome outcome_ = Outcome::Done; ///< of what was read so far
    unsigned clearCode_ = 0;
    unsigned width_ = 0; ///< of the codes at present, in bits
    unsigned known_ = 0; ///< codes that mean something
    int previous_ = -1;  ///< the code before, or -1 after a clear code
    std::uint32_t bits_ = 0;
    unsigned bitCount_ = 0;
    std::array<std::uint8_t, 255> block_{};
    std::size_t blockAt_ = 0;
    std::size_t blockEnd_ = 0;
    std::array<Word, MostCodes> words_{};
    std::vector<std::uint8_t> rest_; ///< of a word that the last rows cut, and how much of it has been given
    std::size_t restAt_ = 0;
};
