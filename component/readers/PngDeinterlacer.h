#pragma once

#include "component/readers/PngDecoder.h"
#include "component/readers/common/SpoolFile.h"
#include "component/tiles/RowReader.h"

#include <array>
#include <memory>
#include <vector>

/// Rows of an interlaced PNG from the top. The seven passes are decoded into a temporary file, one after the
/// other; a row is then put together from those passes that have a part in it, each of which is read from its
/// own begin to its end. Memory: two rows.
class PngDeinterlacer : public RowReader {
public:
    PngDeinterlacer(std::unique_ptr<PngDecoder> decoder, const std::filesystem::path& spoolFolder);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;

private:
    static constexpr int Passes = 7;

    void SpoolPasses();
    void AddPass(int pass, std::uint8_t* row);

    std::unique_ptr<PngDecoder> decoder_; ///< empty once the passes are spooled
    SpoolFile spool_;
    std::array<std::int64_t, Passes> next_{}; ///< where each pass's next row lies in the spool
    std::vector<std::uint8_t> part_;          ///< a pass's row; as wide as the image, for the decoder
    std::int32_t row_ = 0;
};
