#pragma once

#include "component/readers/common/SpoolFile.h"
#include "component/tiles/RowReader.h"

#include <memory>
#include <vector>

/// Rows mirrored left to right, as they come.
class MirroredReader : public RowReader {
public:
    explicit MirroredReader(std::unique_ptr<RowReader> stored);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;
    void WatchForCancel(const Progress& progress) override;

private:
    std::unique_ptr<RowReader> stored_;
};

/// The last stored row first: BottomLeft, or BottomRight, which mirrors the rows as well.
class FlippedReader : public RowReader {
public:
    FlippedReader(std::unique_ptr<RowReader> stored, Orientation orientation,
                  const std::filesystem::path& spoolFolder);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;
    void WatchForCancel(const Progress& progress) override;

private:
    void SpoolRows();

    std::unique_ptr<RowReader> stored_; ///< empty once its rows are spooled
    SpoolFile spool_;
    std::int32_t row_ = 0;
};
