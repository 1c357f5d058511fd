#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using testing::HasSubstr;

// What is unlikely in the scaling of maps, asked for and told to whoever scales one.

namespace {

class ReviewCommand : public AtlavexTest {
protected:
    /// The map lies in the grid, but on its back.
    const Words Mirrored{"--grid",  "UTM (etrs89)",          "--zone",  "32",
                         "--point", "0,0=500000,6100000",    "--point", "0,100=500000,6099800",
                         "--point", "100,100=499800,6099800"};
};

} // namespace

TEST_F(ReviewCommand, SaysNothingOfALikelyMapAndOfOneWithoutAScaling) {
    const std::string library = ScaledLibrary();
    Do({"add-map", library, Bmp("bare.bmp")});
    EXPECT_EQ(Do({"review", library}), "");
    EXPECT_EQ(Do({"review", library, "--strict"}), "");
    EXPECT_EQ(Do({"review", library, "1", "--strict"}), "");
    ExpectFailure(4, {"review", library, "bare"}, "not scaled");
}

TEST_F(ReviewCommand, SaysNothingOfTheSampleSheet) {
    const std::string library = NewLibrary();
    const std::string sheet = SOURCE_DIR "/samples/sheet/sheet";
    Do({"add-map", library, sheet + ".tif", "--grid", "UTM North (wgs84)", "--zone", "33", "--worldfile",
        sheet + ".tfw"});
    EXPECT_EQ(Do({"review", library, "--strict"}), "");
}

TEST_F(ReviewCommand, TellsEachRemarkAndEndsWith1WhenAskedTo) {
    const std::string library = ScaledLibrary();
    DoDoubted(Words{"add-map", library, Bmp("Back.bmp")} + Mirrored);
    EXPECT_THAT(Do({"review", library}), testing::StartsWith("Map 'Back': The map is mirrored"));
    const ProgramResult strict = Run({"review", library, "--strict"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.out, Do({"review", library}));
    EXPECT_EQ(Do({"review", library, "Sheet", "--strict"}), "");
    EXPECT_EQ(Run({"review", library, "Back", "--strict"}).status, 1);
}

TEST_F(ReviewCommand, TellsAsJsonWhatProgramsReadAndPeopleDo) {
    const std::string library = ScaledLibrary();
    DoDoubted(Words{"add-map", library, Bmp("Back.bmp")} + Mirrored);
    const auto maps = DoJson({"review", library})["maps"];
    ASSERT_EQ(maps.size(), 2U);
    EXPECT_TRUE(maps[0]["remarks"].empty());
    EXPECT_EQ(maps[1]["position"], 2);
    EXPECT_EQ(maps[1]["name"], "Back");
    EXPECT_TRUE(maps[1]["scaled"]);
    EXPECT_EQ(maps[1]["remarks"][0]["doubt"], "mirrored");
    EXPECT_THAT(maps[1]["remarks"][0]["sentence"], HasSubstr("mirrored"));
}

TEST_F(ReviewCommand, TheSameIsToldToWhoeverScalesAMapAndTheMapIsSaved) {
    const std::string library = ScaledLibrary();
    const ProgramResult scaled = Run(Words{"scale", library, "1"} + Mirrored);
    EXPECT_EQ(scaled.status, 0);
    EXPECT_EQ(scaled.err, "atlavex: " + Do({"review", library}));
    EXPECT_EQ(Do({"locate", library, "1", "100", "100"}), "499800 6099800\n");
    const ProgramResult added = Run(Words{"add-map", library, Bmp("Back.bmp")} + Mirrored);
    EXPECT_EQ(added.status, 0);
    EXPECT_EQ(added.err, "atlavex: " + Do({"review", library, "2"}));
}

TEST_F(ReviewCommand, ReadsASealedLibraryUnderItsKey) {
    const std::string library = SealedLibrary("a.Atlavex", "sesame");
    const Words key{"--key-file", Write("key", "sesame\n")};
    DoDoubted(Words{"add-map", library, Bmp("Back.bmp")} + Mirrored + key);
    EXPECT_THAT(Do(Words{"review", library} + key), HasSubstr("mirrored"));
    EXPECT_EQ(Run({"review", library, "--key-file", Write("wrong", "open\n")}).status, 3);
}
