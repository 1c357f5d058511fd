// The header and the records: there and back, and every way in which they may be malformed.

#include "component/storage/ByteCodec.h"
#include "component/storage/FileHeader.h"
#include "component/storage/Records.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace {

constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

template <std::size_t Size>
std::array<std::uint8_t, Size> Filled(std::uint8_t first) {
    std::array<std::uint8_t, Size> bytes{};
    for (std::uint8_t& byte : bytes)
        byte = first++;
    return bytes;
}

FileHeader SealedHeader() {
    FileHeader header;
    header.sealed = true;
    header.cost = {2, 65536};
    header.id = Filled<16>(1);
    header.salt = Filled<16>(40);
    header.wrapped = Filled<72>(80);
    header.generation = 0x123456789abc;
    header.nextNumber = 77;
    header.mapCount = 3;
    header.iconCount = 5;
    header.root = Filled<32>(200);
    return header;
}

MapRecord RichMap() {
    MapRecord record;
    record.name = "Kärtchen\0mit Null";
    record.identifier = "{id}";
    record.format = PixelFormat::Palette;
    record.width = 300;
    record.height = 200;
    record.tileWidth = 64;
    record.tileHeight = 128;
    record.palette = {{1, 2, 3, 4}, {5, 6, 7, 255}};
    record.zoom = 0.3;
    record.georeference.datum = QuorvantDatum({1, 2, 3, 4, 5, 6, 7, 8, 9});
    record.georeference.grid = GridNumbers{1, -32, {1, 2, 3, 4, 5, 6, 7}};
    record.georeference.gridIdentifier = -5;
    record.georeference.zone = "4204";
    record.georeference.kind = ScalingKind::Polar;
    record.georeference.points = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, -11, 12}, {13, 14, 15, 16}};
    record.pages = {{9, Filled<16>(7)}};
    return record;
}

/// The bytes with a piece put over them.
Bytes Patched(Bytes bytes, std::size_t at, std::initializer_list<int> piece) {
    for (const int byte : piece)
        bytes.at(at++) = static_cast<std::uint8_t>(byte);
    return bytes;
}

/// Every shorter piece of a well-formed record is malformed, and so is one with a byte too many.
template <typename Decode>
void ExpectOnlyWhole(const Bytes& bytes, const Decode& decode) {
    decode(bytes);
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_THROW(decode(ByteSpan(bytes).first(length)), MalformedRecord) << length;
    Bytes longer = bytes;
    longer.push_back(0);
    EXPECT_THROW(decode(longer), MalformedRecord);
}

} // namespace

TEST(FileHeader, HasItsFieldsWhereTheFormatSaysSo) {
    const Bytes bytes = SealedHeader().Encode();
    ASSERT_EQ(bytes.size(), FileHeader::EncodedSize);
    const auto at = [&bytes](std::size_t offset) { return int{bytes[offset]}; };
    EXPECT_EQ(at(0), 1);
    EXPECT_EQ(at(4), 1);
    EXPECT_EQ(at(5), 1);
    EXPECT_EQ(at(8), 2);
    EXPECT_EQ(at(14), 1) << "65536 KiB";
    EXPECT_EQ(at(16), 1);
    EXPECT_EQ(at(32), 40);
    EXPECT_EQ(at(FileHeader::HeadSize), 80);
    EXPECT_EQ(at(120), 0xbc);
    EXPECT_EQ(at(128), 77);
    EXPECT_EQ(at(136), 3);
    EXPECT_EQ(at(140), 5);
    EXPECT_EQ(at(144), 200);
    EXPECT_EQ(at(176), 0);
}

TEST(FileHeader, ComesBack) {
    for (const bool sealed : {true, false}) {
        FileHeader header = SealedHeader();
        header.sealed = sealed;
        const Bytes bytes = header.Encode();
        EXPECT_EQ(FileHeader::Decode(bytes).Encode(), bytes);
        EXPECT_EQ(FileHeader::Decode(bytes).sealed, sealed);
    }
}

TEST(FileHeader, RefusesWhatNoWriterWrites) {
    const Bytes bytes = SealedHeader().Encode();
    ExpectOnlyWhole(bytes, [](ByteSpan piece) { FileHeader::Decode(piece); });
    for (const auto& [offset, value] : {std::pair{4, 2},
                                        {4, 0},
                                        {5, 0},
                                        {5, 2},
                                        {6, 1},
                                        {7, 1},
                                        {176, 1},
                                        {183, 1},
                                        {127, 0x80},
                                        {135, 0x80},
                                        {139, 0x80},
                                        {143, 0x80}})
        EXPECT_THROW(FileHeader::Decode(Patched(bytes, static_cast<std::size_t>(offset), {value})),
                     MalformedRecord)
            << "byte " << offset << " = " << value;
    EXPECT_THROW(FileHeader::Decode(Patched(bytes, 128, {0, 0, 0, 0, 0, 0, 0, 0})), MalformedRecord);
}

TEST(MapRecord, ComesBack) {
    MapRecord record = RichMap();
    EXPECT_EQ(MapRecord::Decode(record.Encode()), record);
    record.georeference = {};
    EXPECT_EQ(MapRecord::Decode(record.Encode()), record);
    record.format = PixelFormat::Rgba;
    record.palette.clear();
    EXPECT_EQ(MapRecord::Decode(record.Encode()), record);
}

TEST(MapRecord, RefusesWhatIsNotWhole) {
    ExpectOnlyWhole(RichMap().Encode(), [](ByteSpan piece) { MapRecord::Decode(piece); });
}

TEST(MapRecord, RefusesImpossibleValues) {
    const std::vector<std::pair<const char*, std::function<void(MapRecord&)>>> changes{
        {"width 0", [](MapRecord& r) { r.width = 0; }},
        {"negative height", [](MapRecord& r) { r.height = -1; }},
        {"tile width 63", [](MapRecord& r) { r.tileWidth = 63; }},
        {"tile height 1025", [](MapRecord& r) { r.tileHeight = 1025; }},
        {"more pages than its size has", [](MapRecord& r) { r.pages.push_back(r.pages[0]); }},
        {"no page", [](MapRecord& r) { r.pages.clear(); }},
        {"fewer pages than its size has", [](MapRecord& r) { r.width = 2000000000; }},
        {"page number 0", [](MapRecord& r) { r.pages[0].number = 0; }},
        {"format 0", [](MapRecord& r) { r.format = PixelFormat{0}; }},
        {"format 5", [](MapRecord& r) { r.format = PixelFormat{5}; }},
        {"palette of another format", [](MapRecord& r) { r.format = PixelFormat::Rgb; }},
        {"no palette", [](MapRecord& r) { r.palette.clear(); }},
        {"257 colours", [](MapRecord& r) { r.palette.resize(257); }},
        {"zoom 0", [](MapRecord& r) { r.zoom = 0; }},
        {"zoom not a number", [](MapRecord& r) { r.zoom = NotANumber; }},
        {"datum not finite",
         [](MapRecord& r) {
             r.georeference.datum = QuorvantDatum({1, 2, 3, 4, 5, 6, 7, 8, NotANumber});
         }},
        {"grid not finite", [](MapRecord& r) { r.georeference.grid->values[6] = NotANumber; }},
        {"point not finite",
         [](MapRecord& r) { r.georeference.points[3].y = std::numeric_limits<double>::infinity(); }},
        {"scaling 3", [](MapRecord& r) { r.georeference.kind = ScalingKind{3}; }},
        {"four points for three", [](MapRecord& r) { r.georeference.kind = ScalingKind::Linear; }},
        {"three points for four", [](MapRecord& r) { r.georeference.points.pop_back(); }}};
    for (const auto& [name, change] : changes) {
        MapRecord record = RichMap();
        change(record);
        EXPECT_THROW(MapRecord::Decode(record.Encode()), MalformedRecord) << name;
    }
    EXPECT_THROW(MapRecord::Decode(Patched(RichMap().Encode(), 0, {2})), MalformedRecord) << "version 2";
}

TEST(IconRecord, ComesBackAndRefusesWhatIsNotWhole) {
    IconRecord record;
    record.name = "Kirche";
    record.width = 20;
    record.height = 30;
    record.offsetX = -2147483647 - 1;
    record.offsetY = 7;
    record.picture = {12, 345, PngCodec, Filled<16>(9)};
    EXPECT_EQ(IconRecord::Decode(record.Encode()), record);
    ExpectOnlyWhole(record.Encode(), [](ByteSpan piece) { IconRecord::Decode(piece); });
    const std::vector<std::function<void(IconRecord&)>> changes{
        [](IconRecord& r) { r.width = 0; }, [](IconRecord& r) { r.height = -5; },
        [](IconRecord& r) { r.picture.number = 0; }, [](IconRecord& r) { r.picture.codec = 2; }};
    for (const auto& change : changes) {
        IconRecord changed = record;
        change(changed);
        EXPECT_THROW(IconRecord::Decode(changed.Encode()), MalformedRecord);
    }
    EXPECT_THROW(IconRecord::Decode(Patched(record.Encode(), 0, {0})), MalformedRecord);
}

TEST(MetadataRecord, ComesBackInOrderAndRefusesWhatIsNotWhole) {
    const MetadataList metadata{
        {"name", "x"}, {"", "empty key"}, {"zz", ""}, {"aa", std::string("\0\xff", 2)}};
    EXPECT_EQ(DecodeMetadata(EncodeMetadata(metadata)), metadata);
    EXPECT_EQ(DecodeMetadata(EncodeMetadata({})), MetadataList{});
    ExpectOnlyWhole(EncodeMetadata(metadata), [](ByteSpan piece) { DecodeMetadata(piece); });
    EXPECT_THROW(DecodeMetadata(EncodeMetadata({{"a", "1"}, {"b", "2"}, {"a", "3"}})), MalformedRecord);
    EXPECT_THROW(DecodeMetadata(Patched(EncodeMetadata(metadata), 0, {2})), MalformedRecord);
    // A count that no memory could hold is refused before any is asked for.
    EXPECT_THROW(DecodeMetadata(Patched(EncodeMetadata(metadata), 1, {0xff, 0xff, 0xff, 0xff})),
                 MalformedRecord);
}

TEST(DirectoryPage, ComesBackAndRefusesWhatIsNotWhole) {
    const std::vector<BlobRef> entries{{1, 2, PngCodec, Filled<16>(3)}, {4, 5, PngCodec, Filled<16>(6)}};
    const Bytes bytes = EncodePage(entries);
    EXPECT_EQ(bytes.size(), 2 * BlobRef::EncodedSize);
    EXPECT_EQ(DecodePage(bytes), entries);
    EXPECT_EQ(DecodePage({}), std::vector<BlobRef>{});
    EXPECT_THROW(DecodePage(ByteSpan(bytes).first(63)), MalformedRecord);
    EXPECT_THROW(DecodePage(Patched(bytes, 12, {0})), MalformedRecord) << "codec 0";
    EXPECT_THROW(DecodePage(Patched(bytes, 7, {0x80})), MalformedRecord) << "negative number";
}
