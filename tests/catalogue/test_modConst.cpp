#include "catalogue/modConst.h"

#include <gtest/gtest.h>

TEST(ModConst, NamesTheProgramAndItsVersion) {
    EXPECT_EQ(ApplicationName, "Quorvant Studio");
    EXPECT_EQ(VersionText(), "2.31.0");
    EXPECT_EQ(ApplicationText(), "Quorvant Studio v2.31.0");
}
