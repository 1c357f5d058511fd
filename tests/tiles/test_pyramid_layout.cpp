#include "component/PyramidLayout.h"

#include "base/ComponentError.h"

#include <gtest/gtest.h>

#include <limits>

TEST(PyramidLayout, AMapOfOneTileHasOneLevel) {
    const PyramidLayout layout(256, 256, 256, 256);
    EXPECT_EQ(layout.Levels(), 1);
    EXPECT_EQ(layout.Entries(), 1);
    EXPECT_FALSE(layout.IsEdgeTile(0, 0, 0));
    EXPECT_TRUE(PyramidLayout(1, 1, 64, 64).IsEdgeTile(0, 0, 0));
}

TEST(PyramidLayout, LevelsAreHalvedAndRoundedUpUntilOneTileHoldsThem) {
    const PyramidLayout layout(1025, 500, 256, 64);
    ASSERT_EQ(layout.Levels(), 4);
    const std::int32_t expected[][4] = {
        {1025, 500, 5, 8}, {513, 250, 3, 4}, {257, 125, 2, 2}, {129, 63, 1, 1}};
    std::int64_t before = 0;
    for (int level = 0; level < 4; ++level) {
        const PyramidLevel& at = layout.Level(level);
        EXPECT_EQ(at.width, expected[level][0]);
        EXPECT_EQ(at.height, expected[level][1]);
        EXPECT_EQ(at.columns, expected[level][2]);
        EXPECT_EQ(at.rows, expected[level][3]);
        EXPECT_EQ(at.firstEntry, before);
        before += std::int64_t{at.columns} * at.rows;
    }
    EXPECT_EQ(layout.Entries(), before);
}

TEST(PyramidLayout, EntriesCountLevelByLevelRowByRow) {
    const PyramidLayout layout(1025, 500, 256, 64);
    std::int64_t expected = 0;
    for (int level = 0; level < layout.Levels(); ++level)
        for (std::int32_t row = 0; row < layout.Level(level).rows; ++row)
            for (std::int32_t column = 0; column < layout.Level(level).columns; ++column)
                EXPECT_EQ(layout.Entry(level, row, column), expected++);
    EXPECT_EQ(layout.Entries(), expected);
}

TEST(PyramidLayout, EdgeTilesAreThoseThatReachBeyondTheLevel) {
    const PyramidLayout layout(600, 512, 256, 256);
    EXPECT_FALSE(layout.IsEdgeTile(0, 0, 0));
    EXPECT_FALSE(layout.IsEdgeTile(0, 1, 1));
    EXPECT_TRUE(layout.IsEdgeTile(0, 0, 2));
    EXPECT_FALSE(layout.IsEdgeTile(1, 0, 0));
    EXPECT_TRUE(layout.IsEdgeTile(1, 0, 1));
}

TEST(PyramidLayout, TheLargestMapsDoNotOverflow) {
    constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();
    const PyramidLayout layout(Most, Most, 64, 64);
    EXPECT_EQ(layout.Level(0).columns, Most / 64 + 1);
    EXPECT_EQ(layout.Level(layout.Levels() - 1).columns, 1);
    EXPECT_TRUE(layout.IsEdgeTile(0, Most / 64, Most / 64));
    EXPECT_GT(layout.Entries(), std::int64_t{1} << 50);
}

TEST(PyramidLayout, SidesAndTilesOutsideTheirRangeAreRefused) {
    EXPECT_THROW(PyramidLayout(0, 1, 64, 64), ComponentError);
    EXPECT_THROW(PyramidLayout(1, -1, 64, 64), ComponentError);
    for (const std::int32_t side : {-1, 0, 63, 1025}) {
        try {
            PyramidLayout(100, 100, 64, side);
            ADD_FAILURE() << side;
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::InvalidTileSize);
        }
    }
    const PyramidLayout layout(100, 100, 64, 64);
    EXPECT_THROW(layout.Entry(0, 2, 0), ComponentError);
    EXPECT_THROW(layout.Entry(0, 0, -1), ComponentError);
}
