#include "base/Bytes.h"

#include <gtest/gtest.h>

#include <array>

TEST(Bytes, AreTwoHexadecimalDigitsEach) {
    const std::array<std::uint8_t, 4> bytes{0x00, 0x0f, 0xa0, 0xff};
    EXPECT_EQ(HexText(bytes), "000fa0ff");
    EXPECT_EQ(HexText(bytes, true), "000FA0FF");
    EXPECT_EQ(HexText({}), "");
}

TEST(Bytes, ThatAreRandomAreNeverTheSame) {
    std::array<std::uint8_t, 16> first{}, second{};
    FillRandom(first);
    FillRandom(second);
    EXPECT_NE(first, second);
    EXPECT_NE(first, (std::array<std::uint8_t, 16>{}));
}
