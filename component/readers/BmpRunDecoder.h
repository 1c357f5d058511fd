#pragma once

#include "component/readers/BmpHeader.h"
#include "component/readers/common/ImageFile.h"
#include "component/readers/common/SpoolFile.h"

#include <array>
#include <cstdint>
#include <vector>

/// Follows the codes of a run-length coded BMP: RLE4, RLE8, or OS/2's RLE24.
///
/// A pair (n, colour) is n pixels of one colour (RLE4: of two that alternate). A pair that begins with 0 is
/// 0: end of the row; 1: end of the image; 2: a move by the two bytes that follow, right and to later rows;
/// 3 and more: so many pixels as they are, filled up to an even number of bytes. Pixels beyond the row's end
/// are dropped.
class BmpRunDecoder {
public:
    BmpRunDecoder(ImageFile& file, const BmpHeader& header);

    /// Decodes the next codes, up to the end of a row or a move to another, and keeps the row that they end
    /// in the spool, row after row as stored. False at the end of the image. Throws ImageDamaged when the
    /// file ends before all rows are there and did not say that it would.
    bool DecodeRow(SpoolFile& spool);

private:
    static constexpr std::size_t BufferBytes = 1 << 16;

    int NextByte(); ///< -1 at the end of the file
    std::uint8_t RequiredByte();
    void Put(const std::uint8_t* pixel);
    void PutRun(int count);
    void PutLiterals(int count);
    void EndRow(SpoolFile& spool, int rows);
    bool IsComplete() const;

    ImageFile& file_;
    const BmpHeader& header_;
    std::size_t pixelBytes_;
    std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(BufferBytes);
    std::size_t next_ = 0;
    std::size_t end_ = 0;
    std::vector<std::uint8_t> pixels_; ///< the row that is being put together
    std::int64_t column_ = 0;
    std::int64_t row_ = 0;
};
