#pragma once

#include "component/readers/BmpHeader.h"
#include "component/readers/common/ImageFile.h"
#include "component/readers/common/SpoolFile.h"
#include "component/tiles/RowReader.h"

#include <memory>
#include <vector>

/// Rows of a run-length coded BMP. The codes give the rows in the order in which they are stored, mostly from
/// the bottom, and may skip pixels and rows; so they go through a temporary file in which what was skipped
/// stays 0. Memory: one row and a small buffer.
class BmpRunReader : public RowReader {
public:
    BmpRunReader(ImageFile file, const BmpHeader& header, std::filesystem::path spoolFolder);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;

private:
    void SpoolRows();

    ImageFile file_;
    BmpHeader header_;
    std::filesystem::path spoolFolder_;
    std::unique_ptr<SpoolFile> spool_; ///< stored rows in stored order; empty until the first ReadRows
    std::int32_t row_ = 0;
};
