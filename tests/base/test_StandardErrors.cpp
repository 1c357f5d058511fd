#include "base/StandardErrors.h"

#include <gtest/gtest.h>

#include <cerrno>

TEST(LackOfMemory, IsToldInTheEnginesWay) {
    const auto numberOf = [](const auto& work) {
        try {
            TellingLackOfMemory(work);
        } catch (const ComponentError& error) {
            return error.Number();
        }
        return ErrorNumber{};
    };
    EXPECT_EQ(numberOf([] { throw std::bad_alloc(); }), ErrorNumber::OutOfMemory);
    EXPECT_EQ(numberOf([] { throw std::length_error("vector"); }), ErrorNumber::OutOfMemory);
    EXPECT_EQ(numberOf([] { throw ComponentError(ErrorNumber::DiskFull, "Full."); }), ErrorNumber::DiskFull);
    EXPECT_EQ(TellingLackOfMemory([] { return 7; }), 7);
}

TEST(SentenceOf, IsThatOfTheErrorButForMemory) {
    EXPECT_EQ(SentenceOf(ComponentError(ErrorNumber::DiskFull, "Full.")), "Full.");
    EXPECT_EQ(SentenceOf(std::bad_alloc()), "There is not enough memory.");
}

TEST(SystemErrors, OfAFullDiskAreToldApart) {
    for (const int full : {ENOSPC, EDQUOT, EFBIG}) {
        EXPECT_TRUE(MeansDiskFull(full));
        EXPECT_EQ(WriteErrorNumber(full), ErrorNumber::DiskFull);
    }
    for (const int other : {0, EIO, EACCES, EROFS}) {
        EXPECT_FALSE(MeansDiskFull(other));
        EXPECT_EQ(WriteErrorNumber(other), ErrorNumber::FileNotWritable);
    }
}

TEST(SystemErrors, AreSaidInTheSystemsWords) {
    EXPECT_EQ(SystemReason(EACCES), "Permission denied");
}
