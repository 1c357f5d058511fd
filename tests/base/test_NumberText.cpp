#include "base/NumberText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>

TEST(NumberToText, IsTheShortestTextThatReadsBack) {
    EXPECT_EQ(NumberToText(0.1), "0.1");
    EXPECT_EQ(NumberToText(-2.5), "-2.5");
    EXPECT_EQ(NumberToText(6378137), "6378137");
    EXPECT_EQ(NumberToText(1.0 / 3), "0.3333333333333333");
}

TEST(NumberToText, ReadsBackAsTheSameDoubleForAnyBits) {
    std::mt19937_64 random(20240607);
    for (int i = 0; i < 100000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value))
            continue;
        const std::string text = NumberToText(value);
        const auto back = TextToNumber(text);
        ASSERT_TRUE(back) << text;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(*back), std::bit_cast<std::uint64_t>(value)) << text;
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), value) << text; // a second reader agrees
    }
}

TEST(TextToNumber, AcceptsBlanksAroundAndALeadingPlus) {
    EXPECT_EQ(TextToNumber("12.5"), 12.5);
    EXPECT_EQ(TextToNumber(" \t12.5\r"), 12.5);
    EXPECT_EQ(TextToNumber("+12.5"), 12.5);
    EXPECT_EQ(TextToNumber("-1e3"), -1000);
    EXPECT_EQ(TextToNumber(".5"), 0.5);
}

TEST(TextToNumber, RefusesWhatIsNoFiniteDecimalNumber) {
    for (const char* text : {"", " ", "+", "+-1", "--1", "12a", "1 2", "12,5", "nan", "inf", "-inf", "0x10",
                             "1e999", "1e", "12.5.1", "\n1"})
        EXPECT_FALSE(TextToNumber(text)) << text;
}

TEST(TextToWholeNumber, TakesDigitsAndAMinusAlone) {
    EXPECT_EQ(TextToWholeNumber("0"), 0);
    EXPECT_EQ(TextToWholeNumber("0101"), 101);
    EXPECT_EQ(TextToWholeNumber("-7"), -7);
    EXPECT_EQ(TextToWholeNumber("2147483647"), 2147483647);
    for (const char* text : {"", " ", "-", "+1", " 1", "1 ", "1.0", "1,0", "0x1", "2147483648", "1e3", "१"})
        EXPECT_FALSE(TextToWholeNumber(text)) << text;
}
