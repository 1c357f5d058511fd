// Where a path leads through symbolic links, also those that lead to nothing, and what stands there.

#include "base/Paths.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

namespace {

namespace fs = std::filesystem;

class RealPaths : public testing::Test {
protected:
    void SetUp() override { fs::create_directories(folder_ / "deep/er"); }

    fs::path Link(const std::string& name, const fs::path& target) const {
        fs::create_symlink(target, folder_ / name);
        return folder_ / name;
    }

    TempFolder folder_;
};

} // namespace

TEST_F(RealPaths, OfFilesWithoutLinksAreTheirOwn) {
    WriteWholeFile(folder_ / "file", "x");
    EXPECT_EQ(RealPath(folder_ / "file"), folder_ / "file");
    EXPECT_EQ(RealPath(folder_ / "none"), folder_ / "none");
    EXPECT_EQ(RealPath(folder_ / "deep/../none"), folder_ / "none");
}

TEST_F(RealPaths, OfANameAloneLieInTheCurrentFolder) {
    EXPECT_EQ(RealPath("there is no such file"), fs::current_path() / "there is no such file");
}

TEST_F(RealPaths, LeadThroughLinksToFilesAndFolders) {
    WriteWholeFile(folder_ / "deep/file", "x");
    EXPECT_EQ(RealPath(Link("toFile", folder_ / "deep/file")), folder_ / "deep/file");
    EXPECT_EQ(RealPath(Link("toFolder", "deep") / "file"), folder_ / "deep/file");
    EXPECT_EQ(RealPath(folder_ / "toFolder" / "none"), folder_ / "deep/none");
}

TEST_F(RealPaths, OfLinksToNothingAreWhereTheFileWouldBe) {
    EXPECT_EQ(RealPath(Link("absolute", folder_ / "deep/none")), folder_ / "deep/none");
    EXPECT_EQ(RealPath(Link("relative", "deep/none")), folder_ / "deep/none");
    EXPECT_EQ(RealPath(Link("deep/er/up", "../../none")), folder_ / "none");
    EXPECT_EQ(RealPath(Link("ofAMissingFolder", "missing/none")), folder_ / "missing/none");
}

TEST_F(RealPaths, LeadThroughChainsOfLinksToNothing) {
    Link("first", "deep/second");
    Link("deep/second", "er/third");
    Link("deep/er/third", folder_ / "throughFolder/none");
    Link("throughFolder", "deep");
    EXPECT_EQ(RealPath(folder_ / "first"), folder_ / "deep/none");
}

TEST_F(RealPaths, OfCirclesAreLeftAsTheyStand) {
    Link("first", "second");
    Link("second", "first");
    EXPECT_EQ(RealPath(folder_ / "first"), folder_ / "first");
    EXPECT_EQ(RealPath(Link("self", "self")), folder_ / "self");
}

TEST(Paths, LieInTheirFolderOrInTheCurrentOne) {
    EXPECT_EQ(FolderOf("/a/b/file"), "/a/b");
    EXPECT_EQ(FolderOf("/file"), "/");
    EXPECT_EQ(FolderOf("b/file"), "b");
    EXPECT_EQ(FolderOf("file"), ".");
}

TEST_F(RealPaths, AreTakenByFilesFoldersAndLinksToNothing) {
    WriteWholeFile(folder_ / "file", "x");
    EXPECT_TRUE(IsSomethingAt(folder_ / "file"));
    EXPECT_TRUE(IsSomethingAt(folder_ / "deep"));
    EXPECT_TRUE(IsSomethingAt(Link("nowhere", "none")));
    EXPECT_FALSE(IsSomethingAt(folder_ / "none"));
}

TEST_F(RealPaths, OfFilesWithTwoNamesSaySo) {
    WriteWholeFile(folder_ / "file", "x");
    Link("link", "file");
    EXPECT_FALSE(HasSecondName(folder_ / "file"));
    fs::create_hard_link(folder_ / "file", folder_ / "second");
    EXPECT_TRUE(HasSecondName(folder_ / "file"));
    EXPECT_TRUE(HasSecondName(folder_ / "link"));
    EXPECT_FALSE(HasSecondName(folder_ / "none"));
}

TEST_F(RealPaths, OfFoldersListWhatLiesThere) {
    WriteWholeFile(folder_ / "file", "x");
    WriteWholeFile(folder_ / ".hidden", "x");
    EXPECT_THAT(NamesIn(folder_.Path()), testing::UnorderedElementsAre(".", "..", "deep", "file", ".hidden"));
    EXPECT_TRUE(NamesIn(folder_ / "none").empty());
}
