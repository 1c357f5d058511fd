#pragma once

#include "component/tiles/StripPlan.h"
#include "component/tiles/TileQueue.h"

#include <cstdint>
#include <vector>

/// Grows all levels of a pyramid row by row from the rows of level 0. Each pair of rows gives a row of the
/// level above while it is still in the processor's cache; a strip that has all its rows goes to the queue.
class StripAssembler {
public:
    /// Both must outlive the object.
    StripAssembler(const StripPlan& plan, TileQueue& queue);

    /// Rows of level 0 that are still missing, and those of them that fit the strip at hand.
    std::int32_t RowsLeft() const;
    std::int32_t RowsLeftInStrip() const;

    /// Where the next row of level 0 belongs; the rows after it follow without gaps.
    std::uint8_t* NextRow() { return NextRow(0); }
    /// Says that the next `count` rows of level 0, at most RowsLeftInStrip(), are filled.
    void RowsFilled(std::int32_t count);

private:
    struct Level {
        Strip strip;
        std::int32_t rowsDone = 0; ///< of the whole level
        std::int32_t rowsInStrip = 0;
        const std::uint8_t* upper = nullptr;    ///< the row that waits for its lower neighbour
        std::vector<std::uint8_t> upperCopy;    ///< that row, when its strip has been given away
        std::vector<std::uint8_t> upperColours; ///< rows of indices as colours, before they are halved
        std::vector<std::uint8_t> lowerColours;
    };

    std::uint8_t* NextRow(int level);
    void RowFilled(int level);
    void Halve(int level, const std::uint8_t* lower);
    const std::uint8_t* Colours(int level, const std::uint8_t* row, std::vector<std::uint8_t>& buffer) const;
    void GiveAway(int level);

    const StripPlan& plan_;
    TileQueue& queue_;
    std::vector<Level> levels_;
};
