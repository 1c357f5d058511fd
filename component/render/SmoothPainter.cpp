#include "component/render/ViewPainter.h"

#include <algorithm>
#include <cstring>

namespace {

/// The four channels of a pixel, 16 bits each, in the order in which they lie in memory.
using Lanes = std::uint64_t;

/// Makes each lane one byte, dropping the 8 bits that the weights added.
std::uint32_t Packed(Lanes sum) {
    Lanes lanes = (sum >> 8) & 0x00FF00FF00FF00FF;
    lanes = (lanes | lanes >> 8) & 0x0000FFFF0000FFFF;
    return static_cast<std::uint32_t>(lanes | lanes >> 16);
}

/// Half of the last bit in each lane, so that Packed rounds.
constexpr Lanes Half = 0x0080008000800080;

/// Bytes that are summed at once, in a buffer that stays in the nearest cache.
constexpr std::size_t BytesAtOnce = 256;

/// Weighted sum of `Count` rows of bytes, rounded back to 0 to 255. The sums never leave 16 bits; said so
/// before the shift, the compiler makes vector code of the plain loop.
template <std::size_t Count>
void AddBytes(const std::array<const std::uint8_t*, 3>& rows, const Taps& taps, std::size_t size,
              std::uint16_t* sums) {
    for (std::size_t i = 0; i < size; ++i) {
        unsigned sum = 128;
        for (std::size_t row = 0; row < Count; ++row)
            sum += static_cast<unsigned>(rows[row][i]) * taps.weights[row];
        sums[i] = static_cast<std::uint16_t>(static_cast<std::uint16_t>(sum) >> 8);
    }
}

/// Weighted sum of three rows of pixels.
void AddRows(const std::array<const std::uint32_t*, 3>& rows, const Taps& taps, std::size_t count,
             Lanes* to) {
    std::array<std::uint16_t, BytesAtOnce> sums;
    for (std::size_t done = 0; done < 4 * count; done += BytesAtOnce) {
        std::array<const std::uint8_t*, 3> bytes{};
        for (std::size_t i = 0; i < 3; ++i)
            bytes[i] = reinterpret_cast<const std::uint8_t*>(rows[i]) + done;
        const std::size_t size = std::min(BytesAtOnce, 4 * count - done);
        if (taps.weights[2] == 0)
            AddBytes<2>(bytes, taps, size, sums.data());
        else
            AddBytes<3>(bytes, taps, size, sums.data());
        std::memcpy(to + done / 4, sums.data(), 2 * size);
    }
}

/// Weights first the rows, then the columns.
class SmoothPainter : public ViewPainter {
public:
    SmoothPainter(const ViewRequest& request, const PyramidLayout& layout, int level, double step,
                  ScreenRange columns, ScreenRange rows)
        : ViewPainter(level, columns, rows),
          columnTaps_(CoveredPixels(columns, request.left, {level, layout.Level(level).width, step})),
          rowTaps_(CoveredPixels(rows, request.top, {level, layout.Level(level).height, step})),
          firstColumn_(columnTaps_.front().first), lastColumn_(LastOf(columnTaps_.back())) {}

    LevelSpan LevelColumns() const override { return {firstColumn_, lastColumn_}; }
    LevelSpan LevelRows(std::int32_t screenRow) const override {
        const Taps& taps = RowTaps(screenRow);
        return {taps.first, LastOf(taps)};
    }

    void Paint(const TileBlock& block, ScreenRange screenRows, Bitmap& view) const override {
        // Two more than there are: a tap without weight may lie beyond the last column.
        std::vector<Lanes> sums(static_cast<std::size_t>(lastColumn_ - firstColumn_) + 3);
        for (std::int32_t row = screenRows.first; row < screenRows.end; ++row) {
            SumRows(block, RowTaps(row), sums.data());
            SumColumns(sums.data(), view.Row(row) + Columns().first);
        }
    }

private:
    static std::int32_t LastOf(const Taps& taps) {
        return taps.first + (taps.weights[2] != 0 ? 2 : taps.weights[1] != 0 ? 1 : 0);
    }

    const Taps& RowTaps(std::int32_t screenRow) const {
        return rowTaps_[static_cast<std::size_t>(screenRow - Rows().first)];
    }

    void SumRows(const TileBlock& block, const Taps& taps, Lanes* sums) const {
        const std::int32_t last = LastOf(taps);
        for (std::int32_t x = firstColumn_; x <= lastColumn_;) {
            const std::int32_t tile = x / block.tileWidth, inTile = x % block.tileWidth;
            const std::int32_t count = std::min(block.tileWidth - inTile, lastColumn_ + 1 - x);
            std::array<const std::uint32_t*, 3> rows{};
            for (std::int32_t i = 0; i < 3; ++i)
                rows[static_cast<std::size_t>(i)] = block.Row(std::min(taps.first + i, last), tile) + inTile;
            AddRows(rows, taps, static_cast<std::size_t>(count), sums + (x - firstColumn_));
            x += count;
        }
    }

    void SumColumns(const Lanes* sums, std::uint32_t* to) const {
        for (const Taps& taps : columnTaps_) {
            const Lanes* from = sums + (taps.first - firstColumn_);
            const auto [wa, wb, wc] = taps.weights;
            *to++ = Packed(from[0] * wa + from[1] * wb + from[2] * wc + Half);
        }
    }

    std::vector<Taps> columnTaps_;
    std::vector<Taps> rowTaps_;
    std::int32_t firstColumn_;
    std::int32_t lastColumn_;
};

} // namespace

std::unique_ptr<ViewPainter> MakeSmoothPainter(const ViewRequest& request, const PyramidLayout& layout,
                                               int level, double step, ScreenRange columns,
                                               ScreenRange rows) {
    return std::make_unique<SmoothPainter>(request, layout, level, step, columns, rows);
}
