// Records that no writer wrote: refused before anything of their size is allocated.

#include "component/storage/ByteCodec.h"
#include "component/storage/Records.h"

#include <gtest/gtest.h>

TEST(HostileRecords, OfIconsMayNotAskForMorePixelsThanAnIconHas) {
    IconRecord icon;
    icon.picture.number = 1;
    icon.width = 4096;
    icon.height = 4096;
    EXPECT_EQ(IconRecord::Decode(icon.Encode()), icon);
    icon.height = 4097;
    EXPECT_THROW(IconRecord::Decode(icon.Encode()), MalformedRecord);
    icon.width = icon.height = 2147483647;
    EXPECT_THROW(IconRecord::Decode(icon.Encode()), MalformedRecord);
}
