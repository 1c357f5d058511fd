#include "component/storage/ByteCodec.h"
#include "tests/storage/Hex.h"

#include <gtest/gtest.h>

#include <limits>

TEST(ByteCodec, WritesTheLeastSignificantByteFirst) {
    ByteWriter writer;
    writer.Integer(std::uint8_t{0xab});
    writer.Integer(std::uint16_t{0x1234});
    writer.Integer(std::int32_t{-2});
    writer.Integer(std::int64_t{0x0102030405060708});
    writer.Double(1.0);
    writer.Text("aß");
    writer.Raw(BytesOf("x"));
    EXPECT_EQ(writer.Written(), FromHex("ab3412feffffff0807060504030201000000000000f03f0300000061c39f78"));
}

TEST(ByteCodec, ReadsBackWhatWasWritten) {
    ByteWriter writer;
    writer.Integer(std::numeric_limits<std::int64_t>::min());
    writer.Integer(std::numeric_limits<std::uint32_t>::max());
    writer.Double(-0.1);
    writer.Text(std::string("a\0b", 3));
    writer.Text("");
    writer.Integer(std::uint8_t{1});
    ByteReader reader(writer.Written());
    EXPECT_EQ(reader.Integer<std::int64_t>(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(reader.Integer<std::uint32_t>(), std::numeric_limits<std::uint32_t>::max());
    EXPECT_EQ(reader.Double(), -0.1);
    EXPECT_EQ(reader.Text(), std::string("a\0b", 3));
    EXPECT_EQ(reader.Text(), "");
    EXPECT_TRUE(reader.Flag());
    EXPECT_EQ(reader.Left(), 0U);
    reader.End();
}

TEST(ByteCodec, RefusesWhatBreaksOff) {
    const Bytes three = FromHex("010203");
    EXPECT_THROW(ByteReader(three).Integer<std::int32_t>(), MalformedRecord);
    EXPECT_THROW(ByteReader(three).Double(), MalformedRecord);
    EXPECT_THROW(ByteReader(three).Raw(4), MalformedRecord);
    EXPECT_THROW(ByteReader(three).Raw(std::numeric_limits<std::size_t>::max()), MalformedRecord);
    EXPECT_THROW(ByteReader(three).Text(), MalformedRecord);
    EXPECT_THROW(ByteReader(FromHex("04000000616263")).Text(), MalformedRecord);
    EXPECT_THROW(ByteReader(FromHex("ffffffff616263")).Text(), MalformedRecord);
    EXPECT_THROW(ByteReader(Bytes{}).Flag(), MalformedRecord);
}

TEST(ByteCodec, RefusesAFlagThatIsNoneAndWhatIsTooLong) {
    EXPECT_THROW(ByteReader(FromHex("02")).Flag(), MalformedRecord);
    EXPECT_THROW(ByteReader(FromHex("00")).End(), MalformedRecord);
}
