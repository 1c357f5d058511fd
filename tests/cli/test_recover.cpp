#include "tests/cli/AtlavexTest.h"

#include "component/AtlavexLibrary.h"
#include "component/Recovery.h"
#include "tests/support/ScopedVariable.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/wait.h>
#include <unistd.h>

using testing::HasSubstr;

// Unsaved work of programs that ended without a word, at the command.

namespace {

class Recover : public AtlavexTest {
protected:
    Recover() : cache_("XDG_CACHE_HOME", In("cache")) {}

    /// A program works on the library (or on a new one) and is gone in the midst of it; gives the scratch.
    std::string Leave(const std::string& file, const std::string& key,
                      const std::function<void(AtlavexLibrary&)>& work) const {
        const pid_t child = fork();
        if (child == 0) {
            LibraryOptions options;
            options.keepUnsavedWork = true;
            auto* const library = CreateAtlavexLibrary(options).release();
            if (!file.empty())
                library->LoadFromFile(file, key);
            work(*library);
            library->KeepUnsavedWork();
            _exit(0);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
        const auto found = FindUnsavedWork();
        return found.empty() ? std::string() : found.back().scratch;
    }
    std::string LeaveRenamed(const std::string& file, const std::string& key = {}) const {
        return Leave(file, key, [](AtlavexLibrary& library) {
            library.GetMap(library.MapIdAt(1))->SetMetadata("name", "Renamed");
        });
    }

    const std::string sheet_ = Bmp("Sheet.bmp");

private:
    ScopedVariable cache_;
};

} // namespace

TEST_F(Recover, ListsNothingWhereNothingIsLeft) {
    ScaledLibrary();
    EXPECT_EQ(Do({"recover"}), "");
    EXPECT_TRUE(DoJson({"recover"}).empty());
}

TEST_F(Recover, ListsWhatIsLeft) {
    const std::string library = ScaledLibrary();
    const std::string scratch = LeaveRenamed(library);
    const auto list = DoJson({"recover"});
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0]["scratch"], scratch);
    EXPECT_EQ(list[0]["library"], library);
    EXPECT_EQ(list[0]["changedMaps"], 1);
    EXPECT_EQ(list[0]["changedIcons"], 0);
    EXPECT_EQ(list[0]["removedMaps"], 0);
    EXPECT_FALSE(list[0]["needsKey"]);
    EXPECT_FALSE(list[0]["inUse"]);
    EXPECT_EQ(list[0]["problem"], "");
    EXPECT_EQ(DoJson({"recover", scratch}), list);
    const std::string text = Do({"recover"});
    EXPECT_THAT(text, HasSubstr(scratch + "\n  library: " + library + "\n"));
    EXPECT_THAT(text, HasSubstr("unsaved: 1 map and 0 icons added or changed\n  key: none\n"));
}

TEST_F(Recover, MakesANewLibraryAndLetsTheScratchGo) {
    const std::string library = ScaledLibrary();
    const std::string former = ReadWholeFile(library);
    const std::string scratch = LeaveRenamed(library);
    EXPECT_EQ(Do({"recover", scratch, "--to", In("back.Atlavex")}), "");
    const auto maps = DoJson({"info", In("back.Atlavex")})["maps"];
    ASSERT_EQ(maps.size(), 1U);
    EXPECT_EQ(maps[0]["name"], "Renamed");
    EXPECT_EQ(Do({"locate", In("back.Atlavex"), "1", "0", "0"}), "500000 6100000\n");
    EXPECT_EQ(Do({"verify", In("back.Atlavex")}), "");
    EXPECT_EQ(ReadWholeFile(library), former);
    EXPECT_EQ(Do({"recover"}), "");
    EXPECT_FALSE(std::filesystem::exists(scratch));
}

TEST_F(Recover, OverwritesNothingAndKeepsTheScratchWhenItFails) {
    const std::string library = ScaledLibrary();
    const std::string scratch = LeaveRenamed(library);
    ExpectFailure(1, {"recover", scratch, "--to", library}, "exists already");
    ExpectFailure(1, {"recover", scratch, "--to", In("no folder/back.Atlavex")});
    EXPECT_EQ(DoJson({"recover"}).size(), 1U);
    ExpectFailure(1, {"recover", In("none.scratch"), "--to", In("back.Atlavex")}, "no file");
    ExpectFailure(1, {"recover", library, "--discard"}, "no scratch");
    EXPECT_EQ(Do({"recover", scratch, "--to", In("back.Atlavex")}), "");
}

TEST_F(Recover, OfASealedLibraryNeedsItsKey) {
    const std::string library = SealedLibrary("a.Atlavex", "sesame");
    const Words key{"--key-file", Write("key", "sesame\n")};
    Do(Words{"add-map", library, sheet_} + key + SheetScaling);
    const std::string scratch = LeaveRenamed(library, "sesame");
    EXPECT_TRUE(DoJson({"recover"})[0]["needsKey"]);
    const Words recover{"recover", scratch, "--to", In("back.Atlavex")};
    ExpectFailure(3, recover + Words{"--key-file", Write("wrong", "open\n")}, "does not open");
    Do(recover + key);
    EXPECT_EQ(DoJson(Words{"info", In("back.Atlavex")} + key)["maps"][0]["name"], "Renamed");
}

TEST_F(Recover, SaysWhatIsMissingAndKeepsTheScratch) {
    const std::string library = ScaledLibrary();
    const std::string scratch = Leave(
        library, {}, [this](AtlavexLibrary& open) { open.AddMapFromImageFile(sheet_, "Added", 128, 128); });
    std::filesystem::rename(library, In("moved.Atlavex"));
    const ProgramResult result = Run({"recover", scratch, "--to", In("part.Atlavex")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("There is no file '" + library + "'"));
    EXPECT_THAT(result.err, HasSubstr("map 'Sheet' could not be recovered"));
    EXPECT_THAT(result.err, HasSubstr("stays in '" + scratch + "'"));
    EXPECT_EQ(DoJson({"info", In("part.Atlavex")})["maps"].size(), 1U);
    Do({"recover", scratch, "--to", In("whole.Atlavex"), "--base", In("moved.Atlavex")});
    EXPECT_EQ(DoJson({"info", In("whole.Atlavex")})["maps"].size(), 2U);
}

TEST_F(Recover, OfALibraryThatWasNeverSaved) {
    const std::string scratch =
        Leave({}, {}, [this](AtlavexLibrary& open) { open.AddMapFromImageFile(sheet_, "Added", 128, 128); });
    EXPECT_THAT(Do({"recover"}), HasSubstr("library: a new one, never saved\n"));
    Do({"recover", scratch, "--to", In("back.Atlavex")});
    EXPECT_EQ(DoJson({"info", In("back.Atlavex")})["maps"][0]["name"], "Added");
}

TEST_F(Recover, DiscardsOnDemand) {
    const std::string scratch = LeaveRenamed(ScaledLibrary());
    EXPECT_EQ(Do({"recover", scratch, "--discard"}), "");
    EXPECT_FALSE(std::filesystem::exists(scratch));
    EXPECT_EQ(Do({"recover"}), "");
}

TEST_F(Recover, WantsOneThingAtATime) {
    ExpectFailure(2, {"recover", "--discard"}, "SCRATCH");
    ExpectFailure(2, {"recover", "--to", In("x")}, "SCRATCH");
    ExpectFailure(2, {"recover", "s", "--to", In("x"), "--discard"}, "one of");
    ExpectFailure(2, {"recover", "s", "--base", In("x")}, "--to");
    ExpectFailure(2, {"recover", "s", "--to", In("x"), "--json"}, "--json");
}
