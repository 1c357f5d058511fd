#include "catalogue/modConst.h"

#include <gtest/gtest.h>

TEST(ModConst, NamesTheProgramAndItsVersion) {
    EXPECT_EQ(ApplicationName, "Quorvant Studio");
    EXPECT_EQ(VersionMajor, 2);
    EXPECT_EQ(VersionMinor, 31);
    EXPECT_EQ(VersionRevision, 0);
    EXPECT_EQ(VersionText(), "2.31.0");
}
