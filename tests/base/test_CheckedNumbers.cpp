#include "base/CheckedNumbers.h"

#include <gtest/gtest.h>

namespace {

template <typename Function>
ErrorNumber ErrorOf(Function function) {
    try {
        function();
    } catch (const ComponentError& error) {
        return error.Number();
    }
    return ErrorNumber{};
}

} // namespace

TEST(RoundHalfEven, SendsTiesToTheEvenNeighbour) {
    EXPECT_EQ(RoundHalfEven(10.5), 10);
    EXPECT_EQ(RoundHalfEven(11.5), 12);
    EXPECT_EQ(RoundHalfEven(-10.5), -10);
    EXPECT_EQ(RoundHalfEven(-11.5), -12);
    EXPECT_EQ(RoundHalfEven(0.49999999999999994), 0);
    EXPECT_EQ(RoundHalfEven(2.5000000000000004), 3);
}

TEST(CheckedRound, KeepsTheWholeRangeOf16And32Bits) {
    EXPECT_EQ(CheckedRound<std::int16_t>(32767.4), 32767);
    EXPECT_EQ(CheckedRound<std::int16_t>(-32768.5), -32768);
    EXPECT_EQ(CheckedRound<std::int32_t>(2147483647.4), 2147483647);
    EXPECT_EQ(CheckedRound<std::int32_t>(-2147483648.0), std::numeric_limits<std::int32_t>::min());
}

TEST(CheckedRound, FailsInsteadOfWrapping) {
    EXPECT_EQ(ErrorOf([] { CheckedRound<std::int16_t>(32767.5); }), ErrorNumber::Overflow);
    EXPECT_EQ(ErrorOf([] { CheckedRound<std::int16_t>(-32768.6); }), ErrorNumber::Overflow);
    EXPECT_EQ(ErrorOf([] { CheckedRound<std::int32_t>(2147483647.5); }), ErrorNumber::Overflow);
    EXPECT_EQ(ErrorOf([] { CheckedRound<std::int32_t>(std::nan("")); }), ErrorNumber::Overflow);
    EXPECT_EQ(ErrorOf([] { CheckedRound<std::int32_t>(HUGE_VAL); }), ErrorNumber::Overflow);
}

TEST(CheckedNarrow, FailsForValuesThatDoNotFit) {
    EXPECT_EQ(CheckedNarrow<std::int16_t>(-32768), -32768);
    EXPECT_EQ(CheckedNarrow<std::uint8_t>(255), 255);
    EXPECT_EQ(ErrorOf([] { CheckedNarrow<std::int16_t>(32768); }), ErrorNumber::Overflow);
    EXPECT_EQ(ErrorOf([] { CheckedNarrow<std::uint8_t>(-1); }), ErrorNumber::Overflow);
    EXPECT_EQ(ErrorOf([] { CheckedNarrow<std::int64_t>(std::uint64_t{1} << 63); }), ErrorNumber::Overflow);
}

TEST(CheckedAdd, FailsInsteadOfWrapping) {
    EXPECT_EQ(CheckedAdd<std::int16_t>(32000, 767), 32767);
    EXPECT_EQ(CheckedAdd<std::int32_t>(-2147483647, -1), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(ErrorOf([] { CheckedAdd<std::int16_t>(32000, 768); }), ErrorNumber::Overflow);
    EXPECT_EQ(ErrorOf([] { CheckedAdd<std::int32_t>(2147483647, 1); }), ErrorNumber::Overflow);
    EXPECT_EQ(ErrorOf([] { CheckedAdd<std::int32_t>(-2147483647, -2); }), ErrorNumber::Overflow);
}
