#pragma once

#include "component/readers/tiff/TiffLayout.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

/// The stored samples of a TIFF page, row by row from the top, unpacked but not converted: one row for each
/// plane, numbers in the machine's byte order.
class TiffRows {
public:
    virtual ~TiffRows() = default;
    /// Moves to the next row (at first: to the first). Throws ImageDamaged; `pause` is called now and then in
    /// long work and may throw.
    virtual void Next(const std::function<void()>& pause) = 0;
    /// The row of a plane, valid until Next; at least TiffRowBytes long.
    virtual const std::uint8_t* Plane(int plane) const = 0;
};

/// The samples of one kind in a row: those at `first`, `first + step`, ..., counted in samples.
struct TiffSampleRun {
    const std::uint8_t* row;
    std::size_t first;
    std::size_t step;
};

/// Where a sample of each pixel stands in the row that `rows` are at.
TiffSampleRun SampleRunOf(const TiffLayout& layout, const TiffRows& rows, int sample);

/// Bytes of a row of one plane.
std::int64_t TiffRowBytes(const TiffLayout& layout);

/// Picks what suits the layout: small strips and tiles are unpacked as wholes, a row of tiles at a time,
/// large ones row by row (see TiffLargeRows.h), subsampled YCbCr unit by unit. Throws ImageTooLarge where the
/// coder leaves no other way than to unpack a whole block that would need more memory than is sensible.
std::unique_ptr<TiffRows> MakeTiffRows(TiffFile& file, const TiffLayout& layout,
                                       const std::filesystem::path& spoolFolder);
