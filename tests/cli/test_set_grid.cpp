#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using testing::HasSubstr;

// Another grid, zone or datum under the points that a map has.

namespace {

class SetGrid : public AtlavexTest {
protected:
    nlohmann::ordered_json Map(const std::string& library) const {
        return DoJson({"info", library})["maps"][0];
    }
};

} // namespace

TEST_F(SetGrid, ChangesTheZoneAndKeepsThePoints) {
    const std::string library = NewLibrary();
    DoDoubted({"add-map", library, Bmp("Sheet.bmp"), "--grid", "Bundesmeldenetz", "--zone", "M28", "--point",
               "0,0=500000,5300000", "--point", "100,0=500200,5300000", "--point", "0,100=500000,5299800"});
    const auto before = Map(library);
    ASSERT_EQ(before["grid"]["identifier"], 17);
    Do({"set", library, "map", "1", "lastchanged=1999-12-31 23:59:59"});
    Do({"set-grid", library, "1", "--grid", "Bundesmeldenetz", "--zone", "M31"});
    const auto after = Map(library);
    EXPECT_EQ(after["grid"]["identifier"], 18);
    EXPECT_EQ(after["zone"], "2") << "the place of M31 in the list";
    EXPECT_EQ(after["referencePoints"], before["referencePoints"]);
    EXPECT_EQ(after["scaling"], "linear");
    EXPECT_NE(after["metadata"]["lastchanged"], "1999-12-31 23:59:59");
    EXPECT_EQ(Do({"locate", library, "1", "50", "50"}), "500100 5299900\n");
    // The same as if it had been scaled in that zone from the beginning.
    const std::string other = NewLibrary("b.Atlavex");
    DoDoubted({"add-map", other, In("Sheet.bmp"), "--grid", "Bundesmeldenetz", "--zone", "M31", "--point",
               "0,0=500000,5300000", "--point", "100,0=500200,5300000", "--point", "0,100=500000,5299800"});
    EXPECT_EQ(Do({"locate", library, "1", "50", "50", "--wgs84"}),
              Do({"locate", other, "1", "50", "50", "--wgs84"}));
    EXPECT_EQ(Map(other)["grid"], after["grid"]);
    EXPECT_EQ(Map(other)["datum"], after["datum"]);
}

TEST_F(SetGrid, ChangesTheDatumOfAPolarSheet) {
    const std::string library = NewLibrary();
    DoDoubted({"add-map", library, Bmp("Sheet.bmp"), "--datum", "WGS84", "--corner", "10,10=9,48", "--corner",
               "5,190=9,47", "--corner", "290,10=10,48", "--corner", "295,190=10,47"});
    const auto before = Map(library);
    Do({"set-grid", library, "Sheet", "--datum", "ED50"});
    const auto after = Map(library);
    EXPECT_EQ(after["datum"]["name"], "ED50");
    EXPECT_TRUE(after["grid"].is_null());
    EXPECT_EQ(after["scaling"], "polar");
    EXPECT_EQ(after["referencePoints"], before["referencePoints"]);
    EXPECT_EQ(Do({"locate", library, "1", "5", "190"}), "9 47\n");
    EXPECT_NE(Do({"locate", library, "1", "5", "190", "--wgs84"}), "9 47\n");
}

TEST_F(SetGrid, RefusesWhatCannotBe) {
    const std::string library = ScaledLibrary();
    ExpectFailure(2, {"set-grid", library, "1"}, "--grid or --datum");
    ExpectFailure(2, {"set-grid", library, "1", "--grid", "UTM (etrs89)", "--zone", "32", "--datum", "ED50"});
    ExpectFailure(2, {"set-grid", library, "1", "--datum", "ED50", "--zone", "32"}, "--zone");
    EXPECT_NE(Run({"set-grid", library, "1", "--grid", "UTM (etrs89)", "--zone", "61"}).status, 0);
    EXPECT_NE(Run({"set-grid", library, "1", "--grid", "Nowhere"}).status, 0);
    ExpectFailure(1, {"set-grid", library, "1", "--datum", "ED50"}, "");
    Do({"add-map", library, Bmp("bare.bmp")});
    ExpectFailure(4, {"set-grid", library, "bare", "--datum", "ED50"}, "no points yet");
}

TEST_F(SetGrid, WorksInASealedLibrary) {
    const std::string library = SealedLibrary("a.Atlavex", "sesame");
    Write("key", "sesame\n");
    Do(Words{"add-map", library, Bmp("Sheet.bmp"), "--key-file", In("key")} + SheetScaling);
    Do({"set-grid", library, "1", "--grid", "UTM (ed50)", "--zone", "33", "--key-file", In("key")});
    const auto map = DoJson({"info", library, "--key-file", In("key")})["maps"][0];
    EXPECT_EQ(map["grid"]["name"], "UTM (ed50)");
    EXPECT_EQ(map["zone"], "33");
    EXPECT_EQ(Do({"locate", library, "1", "0", "0", "--key-file", In("key")}), "500000 6100000\n");
}
