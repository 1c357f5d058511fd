#pragma once

#include "component/readers/common/LzwWords.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>

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
    void Clear();
    Outcome NextCode(unsigned& code);
    Outcome NextBlock();
    Outcome Follow(unsigned code);

    std::FILE* stream_;
    Outcome outcome_ = Outcome::Done; ///< of what was read so far
    std::optional<LzwWords> words_;   ///< of indices; nothing when the codes have no width
    unsigned width_ = 0;              ///< of the codes at present, in bits
    std::uint32_t bits_ = 0;
    unsigned bitCount_ = 0;
    std::array<std::uint8_t, 255> block_{};
    std::size_t blockAt_ = 0;
    std::size_t blockEnd_ = 0;
};
