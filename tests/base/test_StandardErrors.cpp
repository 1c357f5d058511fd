#include "base/StandardErrors.h"

#include <gtest/gtest.h>

#include <vector>

TEST(StandardErrors, ALackOfMemoryBecomesTheEnginesOwnAndOthersStay) {
    for (const std::size_t size : {std::size_t{1} << 60, ~std::size_t{0}})
        try {
            TellingLackOfMemory([size] { return std::vector<char>(size).size(); });
            FAIL() << "that much memory?";
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::OutOfMemory);
            EXPECT_EQ(error.Description(), "There is not enough memory for this operation.");
        }
    EXPECT_THROW(TellingLackOfMemory([]() -> int { throw std::runtime_error("other"); }), std::runtime_error);
    EXPECT_EQ(TellingLackOfMemory([] { return 5; }), 5);
}
