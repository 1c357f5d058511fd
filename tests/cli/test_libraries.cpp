#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

using Libraries = AtlavexTest;

std::vector<std::string> Names(const nlohmann::ordered_json& list) {
    std::vector<std::string> names;
    for (const auto& object : list)
        names.push_back(object["name"]);
    return names;
}

/// Turns one bit in the middle of the n-th stored picture of a plain library.
void DamagePicture(const std::string& library, int picture) {
    std::string content = ReadWholeFile(library);
    std::size_t at = 0;
    for (int seen = 0; seen <= picture; ++seen)
        at = content.find("IDAT", at + 1);
    content.at(at + 2000) ^= 1;
    WriteWholeFile(library, content);
}

} // namespace

TEST_F(Libraries, ANewLibraryIsPlainAndEmpty) {
    const std::string library = NewLibrary();
    const auto info = DoJson({"info", library});
    EXPECT_EQ(info["sealed"], false);
    EXPECT_EQ(info["maps"].size(), 0U);
    EXPECT_EQ(info["icons"].size(), 0U);
    EXPECT_THAT(FileNames(), ElementsAre("a.Atlavex"));
    EXPECT_THAT(Do({"info", library}), HasSubstr("Maps: 0\n"));
}

TEST_F(Libraries, NewNeverReplacesWhatIsThere) {
    const std::string library = ScaledLibrary();
    ExpectFailure(1, {"new", library}, "exists already");
    fs::create_directory(In("folder"));
    ExpectFailure(1, {"new", In("folder")}, "exists already");
    fs::create_symlink(In("nowhere"), In("link"));
    ExpectFailure(1, {"new", In("link")}, "exists already");
    ExpectFailure(1, {"new", "/dev/null"}, "exists already");
    ExpectFailure(1, {"new", ""});
}

TEST_F(Libraries, ANewLibraryNeedsAFolderThatCanBeWritten) {
    ExpectFailure(1, {"new", In("missing/a.Atlavex")}, "missing");
    ExpectFailure(1, {"new", Write("file", "x") + "/a.Atlavex"});
    ExpectFailure(1, {"new", "/proc/a.Atlavex"}, "/proc");
}

TEST_F(Libraries, WhatIsNoLibraryIsRefusedByEveryCommand) {
    fs::create_directory(In("folder"));
    const std::string empty = Write("empty", ""), text = Write("text", std::string(9000, 'x')),
                      image = Bmp("a.bmp");
    const Words files{In("missing"), In("folder"), empty,       text,
                      image,         "/dev/null",  "/dev/zero", In("missing/a")};
    for (const std::string& file : files) {
        for (const Words& command : {Words{"info", file}, Words{"verify", file}, Words{"compact", file},
                                     Words{"locate", file, "1", "1", "1"}, Words{"remove", file, "map", "1"},
                                     Words{"add-map", file, image}, Words{"rekey", file, "--no-key"}})
            ExpectFailure(1, command);
        const std::string library = file == files.front() ? ScaledLibrary() : In("a.Atlavex");
        ExpectFailure(1, {"merge", library, file});
    }
}

TEST_F(Libraries, APipeInPlaceOfALibraryIsRefusedAtOnce) {
    RunProgram({"mkfifo", In("pipe")});
    EXPECT_EQ(Run({"info", In("pipe")}).status, 1);
    EXPECT_EQ(Run({"new", In("pipe")}).status, 1);
}

TEST_F(Libraries, AddingToAMissingLibraryTellsHowToMakeOne) {
    ExpectFailure(1, {"add-map", In("none.Atlavex"), Bmp("a.bmp")}, "atlavex new");
    ExpectFailure(1, {"add-icon", In("none.Atlavex"), In("a.bmp")}, "atlavex new");
}

TEST_F(Libraries, MergeAddsTheOthersInTheirOrder) {
    const std::string a = ScaledLibrary("a.Atlavex"), b = NewLibrary("b.Atlavex"),
                      c = NewLibrary("c.Atlavex");
    Do({"add-map", b, Bmp("x.bmp"), "--name", "B"});
    Do({"add-map", c, In("x.bmp"), "--name", "C"});
    Do({"merge", a, c, b});
    const auto info = DoJson({"info", a});
    EXPECT_THAT(Names(info["maps"]), ElementsAre("Sheet", "C", "B"));
    EXPECT_THAT(Names(info["icons"]), ElementsAre("Hut"));
    Do({"verify", a});
    EXPECT_EQ(FileNames().count("a.Atlavex.bak"), 0U);
}

TEST_F(Libraries, ALibraryCanBeMergedIntoItself) {
    const std::string library = ScaledLibrary();
    Do({"merge", library, library});
    const auto maps = DoJson({"info", library})["maps"];
    EXPECT_THAT(Names(maps), ElementsAre("Sheet", "Sheet"));
    EXPECT_NE(maps[0]["identifier"], maps[1]["identifier"]);
    EXPECT_EQ(maps[0]["referencePoints"], maps[1]["referencePoints"]);
}

TEST_F(Libraries, AMergeThatFailsAddsNothing) {
    const std::string a = ScaledLibrary("a.Atlavex"), b = ScaledLibrary("b.Atlavex");
    ExpectFailure(1, {"merge", a, b, In("missing.Atlavex")}, "missing.Atlavex");
    EXPECT_EQ(DoJson({"info", a})["maps"].size(), 1U);
}

TEST_F(Libraries, RemovedContentLeavesTheFileWhenItIsCompacted) {
    const std::string library = ScaledLibrary();
    Do({"add-map", library, Bmp("second.bmp", 600, 500)});
    const auto before = fs::file_size(library);
    Do({"remove", library, "map", "second"});
    Do({"remove", library, "icon", "Hut"});
    Do({"compact", library});
    EXPECT_LT(fs::file_size(library), before / 2);
    const auto info = DoJson({"info", library});
    EXPECT_THAT(Names(info["maps"]), ElementsAre("Sheet"));
    EXPECT_EQ(info["icons"].size(), 0U);
    Do({"verify", library});
}

TEST_F(Libraries, ASoundLibraryVerifiesWithoutAWord) {
    const std::string library = ScaledLibrary();
    EXPECT_EQ(Do({"verify", library}), "");
    const auto report = DoJson({"verify", library});
    EXPECT_EQ(report["undamaged"], true);
    EXPECT_EQ(report["damage"].size(), 0U);
}

TEST_F(Libraries, DamagedPixelsAreNamedAndNeverHandedOut) {
    const std::string library = ScaledLibrary();
    DamagePicture(library, 0);
    EXPECT_THAT(ExpectFailure(7, {"verify", library}, "damaged"), HasSubstr("Sheet"));
    const auto report = nlohmann::json::parse(ExpectFailure(7, {"verify", library, "--json"}));
    EXPECT_EQ(report["undamaged"], false);
    EXPECT_THAT(report["damage"][0]["object"].get<std::string>(), HasSubstr("Sheet"));
    int refused = 0;
    for (const Words& command : {Words{"extract", library, "1", "--out", In("o.png")},
                                 Words{"extract", library, "1", "--out", In("o.tif")},
                                 Words{"export-tiles", library, "1", "--to", In("tiles")}})
        refused += Run(command).status == 7 ? 1 : 0;
    EXPECT_GE(refused, 1); // the extracts only when the damage is in a tile of the map itself
    EXPECT_EQ(FileNames().count("o.png") + FileNames().count("o.tif"), refused == 3 ? 0U : 2U);
}

TEST_F(Libraries, ADamagedDirectoryIsDamageToo) {
    const std::string library = ScaledLibrary();
    std::string content = ReadWholeFile(library);
    for (std::size_t at = content.find("Sheet"); at != std::string::npos; at = content.find("Sheet", at + 1))
        content.replace(at, 5, "Shoot");
    WriteWholeFile(library, content);
    ExpectFailure(7, {"verify", library});
    EXPECT_EQ(nlohmann::json::parse(ExpectFailure(7, {"verify", library, "--json"}))["undamaged"], false);
    ExpectFailure(7, {"info", library});
    ExpectFailure(7, {"set", library, "map", "1", "a=b"});
}

TEST_F(Libraries, AStandardOutputThatCannotBeWrittenIsAFailure) {
    const std::string library = ScaledLibrary();
    const ProgramResult result =
        RunProgram({"sh", "-c", "\"$0\" info \"$1\" > /dev/full", BUILD_DIR "/atlavex", library});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("standard output"));
}

TEST_F(Libraries, InfoSaysAllOfALibraryWithADamagedPicture) {
    const std::string library = NewLibrary();
    for (const char* name : {"Hut", "Mill"})
        Do({"add-icon", library, Bmp("icon.bmp", 64, 48), "--name", name, "--offset", "1,2"});
    const auto before = DoJson({"info", library});
    const std::string text = Do({"info", library});
    DamagePicture(library, 0);
    ExpectFailure(7, {"verify", library});
    EXPECT_EQ(DoJson({"info", library}), before);
    EXPECT_EQ(Do({"info", library}), text);
    EXPECT_THAT(text, HasSubstr("pixels: 64x48"));
}

TEST_F(Libraries, ABrokenStructureIsSaidInWordsOfTheUsers) {
    const std::string library = ScaledLibrary();
    Do({"add-map", library, Bmp("x.bmp", 900, 700)});
    const std::string whole = ReadWholeFile(library);
    // Pages of the file one after another are filled with nonsense.
    for (std::size_t page = 1; page * 8192 < whole.size(); page += 7) {
        std::string broken = whole;
        broken.replace(page * 8192, 4096, std::string(4096, '\x5a'));
        WriteWholeFile(library, broken);
        for (const Words& command : {Words{"verify", library}, Words{"info", library},
                                     Words{"extract", library, "2", "--out", In("o.png")}}) {
            const ProgramResult result = Run(command);
            for (const char* foreign :
                 {"malformed", "disk image", "btree", "database", "Tree ", "SQL", "sqlite"})
                EXPECT_THAT(result.out + result.err, Not(HasSubstr(foreign))) << page;
        }
    }
}
