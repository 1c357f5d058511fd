// The owners of descriptors and streams: what they close, and when.

#include "base/FileDescriptor.h"
#include "base/FileStream.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <cerrno>
#include <utility>

namespace {

bool IsOpenNumber(int number) {
    return fcntl(number, F_GETFD) != -1;
}

int OpenNull(int flags = O_RDONLY) {
    return open("/dev/null", flags | O_CLOEXEC);
}

} // namespace

TEST(FileDescriptor, OwnsNoneAtFirstAndAfterAFailedOpen) {
    EXPECT_FALSE(FileDescriptor().IsOpen());
    EXPECT_FALSE(FileDescriptor(-1).IsOpen());
}

TEST(FileDescriptor, IsClosedWithItsOwner) {
    const int number = OpenNull();
    {
        const FileDescriptor owner(number);
        EXPECT_TRUE(owner.IsOpen());
        EXPECT_EQ(owner.Number(), number);
        EXPECT_TRUE(IsOpenNumber(number));
    }
    EXPECT_FALSE(IsOpenNumber(number));
}

TEST(FileDescriptor, HasOneOwnerWhenItIsHandedOn) {
    FileDescriptor first(OpenNull());
    const int number = first.Number();
    FileDescriptor second(std::move(first));
    EXPECT_EQ(second.Number(), number);
    const int former = OpenNull();
    FileDescriptor third(former);
    third = std::move(second);
    EXPECT_FALSE(IsOpenNumber(former)) << "what it owned before is closed";
    EXPECT_EQ(third.Number(), number);
    EXPECT_TRUE(IsOpenNumber(number));
    EXPECT_EQ(third.Release(), number);
    EXPECT_FALSE(third.IsOpen());
    EXPECT_TRUE(IsOpenNumber(number));
    EXPECT_TRUE(FileDescriptor(number).Close());
    EXPECT_FALSE(IsOpenNumber(number));
}

TEST(FileDescriptor, SaysWhenClosingFails) {
    FileDescriptor owner(OpenNull());
    FileDescriptor(owner.Number()).Close(); // behind the owner's back
    errno = 0;
    EXPECT_FALSE(owner.Close());
    EXPECT_EQ(errno, EBADF);
    EXPECT_FALSE(owner.IsOpen());
}

TEST(FileDescriptor, LeavesTheReasonOfAnEarlierFailure) {
    {
        const FileDescriptor owner(OpenNull());
        FileDescriptor(owner.Number()).Close(); // so that the owner's own close fails
        errno = ENOSPC;
    }
    EXPECT_EQ(errno, ENOSPC);
}

TEST(FileStream, OwnsTheDescriptorThatItReadsFrom) {
    const TempFolder folder;
    WriteWholeFile(folder / "text", "abc");
    const int number = open((folder / "text").c_str(), O_RDONLY | O_CLOEXEC);
    FileStream stream = OpenFileStream(FileDescriptor(number), "rb");
    ASSERT_TRUE(stream);
    EXPECT_EQ(std::fgetc(stream.get()), 'a');
    stream.reset();
    EXPECT_FALSE(IsOpenNumber(number));
}

TEST(FileStream, ThatCannotBeOpenedLeavesNoDescriptorBehind) {
    const int number = OpenNull();
    EXPECT_FALSE(OpenFileStream(FileDescriptor(number), "wb")) << "it was opened for reading alone";
    EXPECT_EQ(errno, EINVAL);
    EXPECT_FALSE(IsOpenNumber(number));
    EXPECT_FALSE(OpenFileStream(FileDescriptor(-1), "rb"));
    EXPECT_EQ(errno, EBADF);
}
