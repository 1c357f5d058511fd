#include "base/Guid.h"

#include <gmock/gmock.h>

#include <array>
#include <set>
#include <string>

TEST(CreateGUID, HasTheTextFormOfARandomUuidWithoutBraces) {
    const auto* form = "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";
    for (int i = 0; i < 1000; ++i) {
        const std::string guid = CreateGUID();
        EXPECT_EQ(guid.size(), 36u);
        EXPECT_THAT(guid, testing::MatchesRegex(form));
        EXPECT_TRUE(IsGUIDText(guid));
    }
}

TEST(CreateGUID, NeverRepeatsItself) {
    std::set<std::string> guids;
    for (int i = 0; i < 10000; ++i)
        guids.insert(CreateGUID());
    EXPECT_EQ(guids.size(), 10000u);
}

TEST(CreateGUID, LeavesNoBitButTheMarksConstant) {
    std::array<std::set<char>, 36> seen;
    for (int i = 0; i < 2000; ++i) {
        const std::string guid = CreateGUID();
        for (std::size_t k = 0; k < seen.size(); ++k)
            seen[k].insert(guid[k]);
    }
    for (std::size_t k = 0; k < seen.size(); ++k) {
        const bool hyphen = k == 8 || k == 13 || k == 18 || k == 23;
        EXPECT_EQ(seen[k].size(), hyphen || k == 14 ? 1u : k == 19 ? 4u : 16u) << k;
    }
}

TEST(IsGUIDText, AcceptsEitherLetterCaseWithAndWithoutHyphens) {
    EXPECT_TRUE(IsGUIDText("0123ABCD-4567-89AB-CDEF-0123456789AB"));
    EXPECT_TRUE(IsGUIDText("0123abcd-4567-89ab-cdef-0123456789ab"));
    EXPECT_TRUE(IsGUIDText("0123ABCD456789ABCDEF0123456789AB"));
}

TEST(IsGUIDText, IsLooseAboutHyphens) {
    EXPECT_TRUE(IsGUIDText(std::string(36, '-')));
    EXPECT_TRUE(IsGUIDText(std::string(32, '-')));
    EXPECT_TRUE(IsGUIDText(std::string(33, 'F')));
}

TEST(IsGUIDText, TrimsBlanksAtBothEndsOnly) {
    EXPECT_TRUE(IsGUIDText("   0123ABCD-4567-89AB-CDEF-0123456789AB  "));
    EXPECT_FALSE(IsGUIDText("0123ABCD-4567 89AB-CDEF-0123456789AB"));
    EXPECT_FALSE(IsGUIDText("\t0123ABCD456789ABCDEF0123456789AB"));
}

TEST(IsGUIDText, RefusesOtherLengthsAndCharacters) {
    EXPECT_FALSE(IsGUIDText(""));
    EXPECT_FALSE(IsGUIDText(std::string(40, ' ')));
    EXPECT_FALSE(IsGUIDText(std::string(31, 'A')));
    EXPECT_FALSE(IsGUIDText(std::string(37, 'A')));
    EXPECT_FALSE(IsGUIDText(std::string(31, 'A') + "G"));
    EXPECT_FALSE(IsGUIDText("{0123ABCD456789ABCDEF0123456789AB}"));
    EXPECT_FALSE(IsGUIDText(std::string(31, 'A') + "\xC3"));
}
