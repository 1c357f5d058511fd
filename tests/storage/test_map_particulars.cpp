// What only a map record of version 2 has: there and back, at the vector of the format's page, and every way
// in which it may be malformed.

#include "component/storage/ByteCodec.h"
#include "component/storage/Records.h"
#include "tests/storage/Hex.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <functional>
#include <limits>

namespace {

using testing::HasSubstr;

constexpr double Nan = std::numeric_limits<double>::quiet_NaN();

MapRecord PlainMap() {
    MapRecord record;
    record.name = "Blatt";
    record.width = record.height = record.tileWidth = record.tileHeight = 64;
    record.georeference.kind = ScalingKind::Linear;
    record.georeference.points = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, -11, 12}};
    record.georeference.datum = QuorvantDatum({6377397.155, 0.0066743722, 0, 0, 0, 0, 0, 0, 0});
    record.georeference.grid = GridNumbers{1, 32, {1, 2, 3, 4, 5, 6, 7}};
    record.pages = {{9, {}}};
    return record;
}

MapRecord MapWithParticulars() {
    MapRecord record = PlainMap();
    record.georeference.system = {"EPSG:31467", "DHDN / 3-degree", "EPSG:1777", "DHDN to WGS 84 (2)", 3,
                                  false};
    record.georeference.entered = {{1.5, 2, -0.25, 1e9, "Kirche"}, {3, 4, 5, 6, std::string("\0\xff", 2)}};
    record.georeference.checks = {{"first", {{1, 2, 3, 4, "a"}}}, {"", {}}};
    return record;
}

std::string RefusalOf(const Bytes& bytes) {
    try {
        MapRecord::Decode(bytes);
    } catch (const MalformedRecord& malformed) {
        return malformed.what();
    }
    return "it was taken";
}

/// Where the particulars begin in the record.
std::size_t ParticularsOf(const MapRecord& record) {
    MapRecord plain = record;
    plain.georeference.system = {};
    plain.georeference.entered.clear();
    plain.georeference.checks.clear();
    return plain.Encode().size();
}

/// The last block of digits of the page.
Bytes VectorOfThePage() {
    const std::string page = ReadWholeFile(SOURCE_DIR "/docs/atlavex-format.md");
    std::string digits;
    for (const char c : page.substr(page.find("\n    ", page.find("A map record of version 2 ("))))
        if (c != ' ' && c != '\n')
            digits += c;
    return FromHex(digits);
}

} // namespace

TEST(MapParticulars, MakeARecordOfVersionTwoAndComeBack) {
    const MapRecord record = MapWithParticulars();
    EXPECT_EQ(record.Version(), 2);
    EXPECT_EQ(record.Encode().front(), 2);
    EXPECT_EQ(MapRecord::Decode(record.Encode()), record);
}

TEST(MapParticulars, AreNotWrittenWhereNothingNeedsThem) {
    EXPECT_EQ(PlainMap().Version(), 1);
    EXPECT_EQ(PlainMap().Encode().front(), 1);
    const std::vector<std::function<void(Georeference&)>> needs{
        [](Georeference& g) { g.grid->method = 7; },
        [](Georeference& g) { g.grid->method = std::numeric_limits<std::int32_t>::max(); },
        [](Georeference& g) { g.system.code = "x"; },
        [](Georeference& g) { g.system.name = "x"; },
        [](Georeference& g) { g.system.shiftCode = "x"; },
        [](Georeference& g) { g.system.shiftName = "x"; },
        [](Georeference& g) { g.system.shiftAccuracy = 0.5; },
        [](Georeference& g) { g.system.shiftUnknown = true; },
        [](Georeference& g) { g.entered.emplace_back(); },
        [](Georeference& g) { g.checks.emplace_back(); }};
    for (std::size_t i = 0; i < needs.size(); ++i) {
        MapRecord record = PlainMap();
        needs[i](record.georeference);
        EXPECT_EQ(record.Version(), 2) << i;
        EXPECT_EQ(MapRecord::Decode(record.Encode()), record) << i;
    }
}

TEST(MapParticulars, StandInThePagesVectorAsThePageSays) {
    const Bytes bytes = VectorOfThePage();
    const MapRecord record = MapRecord::Decode(bytes);
    EXPECT_EQ(record.Encode(), bytes);
    EXPECT_EQ(record.georeference.grid->method, 16);
    EXPECT_TRUE(record.georeference.system.shiftUnknown);
    EXPECT_EQ(record.georeference.system.code, "EPSG:3068");
    ASSERT_EQ(record.georeference.entered.size(), 4U);
    EXPECT_EQ(record.georeference.entered[3], (MeasuredPoint{25480, 20000, 480, 0.25, "NE"}));
    EXPECT_EQ(record.georeference.checks,
              (std::vector<CheckSet>{{"T\u00fcrme", {{25240, 19760, 240, 240.125, "Dom"}}}}));
}

TEST(MapParticulars, AreRefusedWhereTheyAreNotWhole) {
    const Bytes bytes = MapWithParticulars().Encode();
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_THROW(MapRecord::Decode(ByteSpan(bytes).first(length)), MalformedRecord) << length;
    Bytes longer = bytes;
    longer.push_back(0);
    EXPECT_EQ(RefusalOf(longer), "it is longer than its content");
}

TEST(MapParticulars, AreRefusedWhereNoWriterWouldWriteThem) {
    const std::vector<std::pair<const char*, std::function<void(Georeference&)>>> forged{
        {"its shift is unknown and yet named", [](Georeference& g) { g.system.shiftUnknown = true; }},
        {"its shift is unknown and yet given",
         [](Georeference& g) {
             g.system = {"", "", "", "", 0, true};
             g.datum = QuorvantDatum({6377397.155, 0.0066743722, 1, 0, 0, 0, 0, 0, 0});
         }},
        {"its shift is unknown and yet given",
         [](Georeference& g) {
             g.system = {"", "", "", "", 0, true};
             g.datum.reset();
         }},
        {"the accuracy of its shift is negative", [](Georeference& g) { g.system.shiftAccuracy = -1; }},
        {"the accuracy of its shift is negative", [](Georeference& g) { g.system.shiftAccuracy = -0.0; }},
        {"a number is not finite", [](Georeference& g) { g.system.shiftAccuracy = Nan; }},
        {"a number is not finite", [](Georeference& g) { g.entered[1].pixelY = Nan; }},
        {"a number is not finite", [](Georeference& g) { g.checks[0].points[0].x = Nan; }},
        {"it has too many points", [](Georeference& g) { g.entered.resize(MostMeasuredPoints + 1); }},
        {"it has too many points",
         [](Georeference& g) { g.checks[1].points.resize(MostMeasuredPoints + 1); }},
        {"it has too many check sets", [](Georeference& g) { g.checks.resize(MostCheckSets + 1); }}};
    for (const auto& [reason, forge] : forged) {
        MapRecord record = MapWithParticulars();
        forge(record.georeference);
        EXPECT_EQ(RefusalOf(record.Encode()), reason);
    }
}

TEST(MapParticulars, AreRefusedWithUnknownFlags) {
    Bytes bytes = MapWithParticulars().Encode();
    bytes.at(ParticularsOf(MapWithParticulars())) = 2;
    EXPECT_EQ(RefusalOf(bytes), "it has an unknown flag");
}

TEST(MapParticulars, AreRefusedWhereARecordOfVersionOneWouldDo) {
    Bytes bytes = PlainMap().Encode();
    EXPECT_EQ(RefusalOf(bytes), "it was taken");
    bytes.front() = 2;
    bytes.resize(bytes.size() + 1 + 4 * 4 + 8 + 4 + 4);
    EXPECT_EQ(RefusalOf(bytes), "it is of version 2 and needs none of it");
    bytes.front() = 3;
    EXPECT_EQ(RefusalOf(bytes), "its record is of an unknown version");
}

TEST(MapParticulars, AreNeededForAMethodAboveSix) {
    MapRecord record = PlainMap();
    record.georeference.grid->method = 7;
    Bytes bytes = record.Encode();
    bytes.front() = 1;
    bytes.resize(ParticularsOf(PlainMap()));
    EXPECT_THAT(RefusalOf(bytes), HasSubstr("method is none of its record's version"));
}

/// A count that the record is far too short for is refused before memory for it is asked.
TEST(MapParticulars, WithACountThatTheRecordCannotHoldBreakOff) {
    MapRecord record = PlainMap();
    record.georeference.entered = {{1, 2, 3, 4, ""}};
    Bytes bytes = record.Encode();
    const std::size_t count = ParticularsOf(record) + 1 + 4 * 4 + 8;
    ASSERT_EQ(bytes.at(count), 1);
    bytes.at(count + 1) = 0xff;
    EXPECT_EQ(RefusalOf(bytes), "it breaks off");
    bytes.at(count + 3) = 0xff;
    EXPECT_EQ(RefusalOf(bytes), "it has too many points");
}
