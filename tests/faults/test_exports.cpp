// Whether exported tiles are on the disk before their description calls them complete.

#include "base/ComponentError.h"
#include "tests/faults/FaultLab.h"
#include "tests/faults/Killing.h"

#include <gmock/gmock.h>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class Exports : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(folder_ / "scratch");
        fs::create_directory(folder_ / "tiles");
        MakeLibrary(folder_ / "sheet.Atlavex", 1, 300);
    }

    std::vector<std::string> Command() const {
        return {DriverProgram(), "export", (folder_ / "scratch").string(),
                (folder_ / "sheet.Atlavex").string(), (folder_ / "tiles").string()};
    }
    std::string Description() const { return ReadWholeFile(folder_ / "tiles" / "tiles.json"); }

    TempFolder folder_;
};

/// The last call whose text holds all of this.
std::size_t LastOf(const std::vector<SystemCall>& calls, const std::string& name, const std::string& text) {
    std::size_t last = 0;
    for (std::size_t i = 0; i < calls.size(); ++i)
        if (calls[i].name == name && calls[i].text.find(text) != std::string::npos)
            last = i;
    EXPECT_GT(last, 0U) << name << " of " << text;
    return last;
}

} // namespace

TEST_F(Exports, AreOnTheDiskBeforeTheyAreCalledComplete) {
    const std::vector<SystemCall> calls = TraceCalls(Command(), "openat,syncfs,renameat,fsync");
    const std::size_t synced = LastOf(calls, "syncfs", (folder_ / "tiles").string());
    for (const char* const written : {".png\"", "column.vrt\"", "map.vrt\"", "index.html"})
        EXPECT_LT(LastOf(calls, "openat", written), synced) << written;
    EXPECT_GT(LastOf(calls, "renameat", "tiles.json"), synced);
    EXPECT_THAT(Description(), HasSubstr("\"complete\": true"));
}

TEST_F(Exports, WhoseTilesDoNotReachTheDiskFailAndAreNotCalledComplete) {
    const ProgramResult result = RunTampered(Command(), "syncfs", "error=EIO");
    EXPECT_EQ(FirstError(result), static_cast<int>(ErrorNumber::FileNotWritable)) << result.out;
    EXPECT_THAT(result.out, HasSubstr((folder_ / "tiles").string()));
    EXPECT_THAT(Description(), HasSubstr("\"complete\": false"));
}
