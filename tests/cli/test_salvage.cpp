#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>

using testing::HasSubstr;

// What is sound of a damaged library, at the command.

namespace {

class SalvageCommand : public AtlavexTest {
protected:
    /// The file without its second half.
    void CutInHalf(const std::string& file) const {
        std::filesystem::resize_file(file, std::filesystem::file_size(file) * 6 / 10);
    }
};

} // namespace

TEST_F(SalvageCommand, OfASoundLibraryCopiesAllAndSaysNothing) {
    const std::string library = ScaledLibrary();
    EXPECT_EQ(Do({"salvage", library, "--to", In("new.Atlavex")}), "");
    auto maps = DoJson({"info", library})["maps"];
    EXPECT_EQ(DoJson({"info", In("new.Atlavex")})["maps"], maps);
    EXPECT_EQ(Do({"verify", In("new.Atlavex")}), "");
    Do({"extract", library, "1", "--out", In("old.png")});
    Do({"extract", In("new.Atlavex"), "1", "--out", In("new.png")});
    EXPECT_EQ(ReadWholeFile(In("new.png")), ReadWholeFile(In("old.png")));
}

TEST_F(SalvageCommand, OfAFileThatNothingOpensMakesOneThatOpensAndNamesWhatIsMissing) {
    const std::string library = ScaledLibrary();
    CutInHalf(library);
    ExpectFailure(7, {"info", library});
    const ProgramResult result = Run({"salvage", library, "--to", In("new.Atlavex")});
    EXPECT_EQ(result.status, 7);
    EXPECT_THAT(result.err, HasSubstr("what is sound of it is in '" + In("new.Atlavex") + "'"));
    EXPECT_THAT(result.out, HasSubstr("Map 'Sheet', level 0, row "));
    EXPECT_EQ(Do({"verify", In("new.Atlavex")}), "");
    EXPECT_EQ(Do({"locate", In("new.Atlavex"), "1", "0", "0"}), "500000 6100000\n");
}

TEST_F(SalvageCommand, TellsAsJsonWhatWasCopiedAndWhatNot) {
    const std::string library = ScaledLibrary();
    CutInHalf(library);
    const ProgramResult result = Run({"salvage", library, "--to", In("new.Atlavex"), "--json"});
    EXPECT_EQ(result.status, 7);
    const auto report = nlohmann::ordered_json::parse(result.out);
    EXPECT_EQ(report["maps"], 1);
    EXPECT_FALSE(report["undamaged"]);
    EXPECT_FALSE(report["damage"].empty());
    EXPECT_EQ(report["to"], In("new.Atlavex"));
}

TEST_F(SalvageCommand, OverwritesNothingAndMakesNothingOfNothing) {
    const std::string library = ScaledLibrary();
    ExpectFailure(1, {"salvage", library, "--to", library}, "exists already");
    ExpectFailure(7, {"salvage", Write("notes.txt", std::string(20000, 'x')), "--to", In("new.Atlavex")},
                  "beyond salvage");
    ExpectFailure(1, {"salvage", In("none.Atlavex"), "--to", In("new.Atlavex")}, "no file");
    ExpectFailure(2, {"salvage", library}, "--to");
}

TEST_F(SalvageCommand, OfASealedLibraryNeedsItsKeyAndSealsTheNewOne) {
    const std::string library = SealedLibrary("a.Atlavex", "sesame");
    const Words key{"--key-file", Write("key", "sesame\n")};
    Do(Words{"add-map", library, Bmp("Sheet.bmp")} + key + SheetScaling);
    const Words salvage{"salvage", library, "--to", In("new.Atlavex")};
    ExpectFailure(3, salvage + Words{"--key-file", Write("wrong", "open\n")}, "does not open");
    EXPECT_EQ(Do(salvage + key), "");
    EXPECT_EQ(DoJson(Words{"info", In("new.Atlavex")} + key)["maps"][0]["name"], "Sheet");
    ExpectFailure(3, Words{"salvage", ScaledLibrary("b.Atlavex"), "--to", In("c.Atlavex")} + key,
                  "not sealed");
}
