#include "base/Utf8.h"

#include <gtest/gtest.h>

TEST(FirstCharacter, IsTakenFromTextsOfAnyLength) {
    const struct {
        std::string_view text;
        char32_t code;
        std::size_t length;
    } rows[] = {{"A", 'A', 1},
                {"\u00e9x", 0xe9, 2},
                {"\u2028", 0x2028, 3},
                {"\U0001f5fa!", 0x1f5fa, 4},
                {{"\0x", 2}, 0, 1},
                {"\U0010ffff", 0x10ffff, 4},
                {"\xef\xbf\xbe", 0xfffe, 3}};
    for (const auto& row : rows) {
        EXPECT_EQ(FirstCharacter(row.text).code, row.code) << row.text;
        EXPECT_EQ(FirstCharacter(row.text).length, row.length) << row.text;
    }
}

TEST(FirstCharacter, IsNoneWhereNoneStarts) {
    for (const std::string_view text :
         {"", "\x80", "\xc3", "\xc3(", "\xc0\x80", "\xe0\x80\x80", "\xed\xa0\x80", "\xe2\x80",
          "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xff"})
        EXPECT_EQ(FirstCharacter(text).length, 0U) << text;
}
