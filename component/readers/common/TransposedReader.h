#pragma once

#include "component/readers/common/SpoolFile.h"
#include "component/tiles/RowReader.h"

#include <memory>
#include <vector>

/// Stored columns as rows: the orientations LeftTop, RightTop, RightBottom and LeftBottom.
///
/// The temporary file holds the stored image as strips of some columns, one strip after the other, each strip
/// row by row. The decoder's rows are cut into the strips band by band; to answer, one whole strip is read
/// and transposed in memory, which gives as many displayed rows as the strip has columns. Band and strip are
/// as large as TurnBufferBytes allows, so that every read and write is long.
class TransposedReader : public RowReader {
public:
    TransposedReader(std::unique_ptr<RowReader> stored, Orientation orientation,
                     const std::filesystem::path& spoolFolder);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;
    void WatchForCancel(const Progress& progress) override;

private:
    // A stored image of W × H pixels is displayed with info_.width = H and info_.height = W.
    std::int32_t StoredWidth() const { return info_.height; }
    std::int32_t StoredHeight() const { return info_.width; }
    std::int32_t StripWidth(std::int32_t strip) const;
    std::int64_t StripOffset(std::int32_t strip) const;

    void SpoolStrips();
    void CutBand(std::int32_t row, std::int32_t count, const std::vector<std::uint8_t>& band);
    void LoadStrip(std::int32_t strip);

    std::unique_ptr<RowReader> stored_; ///< empty once its rows are spooled
    SpoolFile spool_;
    std::int32_t stripColumns_; ///< columns of every strip but the last
    bool columnsBackwards_;     ///< the last stored column is the first displayed row
    bool rowsBackwards_;        ///< the last stored row is the first displayed column
    std::int32_t row_ = 0;
    std::int32_t loadedStrip_ = -1;
    std::vector<std::uint8_t> part_;    ///< pixels of one strip as they lie in the file
    std::vector<std::uint8_t> columns_; ///< the loaded strip, its columns as rows
};
