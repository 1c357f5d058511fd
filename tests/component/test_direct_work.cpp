// Maps and icons that are added directly to the file that was loaded.

#include "tests/component/LibraryFixture.h"

namespace {

class DirectWork : public LibraryTest {};

} // namespace

TEST_F(DirectWork, ThatIsNotSavedLeavesTheFileAsItWas) {
    for (const std::string key : {"", "key"}) {
        const std::string file = PathOf("lib.Atlavex");
        std::filesystem::remove(file);
        const LibraryContent content = SaveRichLibrary(file, key);
        const std::string bytes = ReadWholeFile(file);
        {
            const auto library = OpenDirectly(file, key);
            AddMap(*library, MakeSheet(PixelFormat::Rgb, 3000, 2000), "large enough to reach the file");
            AddIcon(*library, MakeSheet(PixelFormat::Rgb, 30, 30));
        }
        EXPECT_TRUE(ReadWholeFile(file) == bytes);
        EXPECT_EQ(Names(), std::vector<std::string>{"lib.Atlavex"});
        ExpectHolds(file, key, content);
    }
}

TEST_F(DirectWork, ThatIsRemovedBeforeTheSaveLeavesNothingInTheFile) {
    const std::string file = PathOf("lib.Atlavex");
    const LibraryContent content = SaveRichLibrary(file);
    const auto library = OpenDirectly(file);
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 200, 200), "added");
    AddIcon(*library, MakeSheet(PixelFormat::Rgb, 30, 30), "added");
    library->RemoveMap(library->MapIdAt(3));
    library->RemoveIcon(library->IconIdAt(3));
    library->SaveToFile(file, {});
    ExpectHolds(file, {}, content);
}

TEST_F(DirectWork, IsPossibleAgainAfterEachSave) {
    const std::string file = PathOf("lib.Atlavex");
    const auto library = NewDirectLibrary();
    for (int round = 1; round <= 4; ++round) {
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 150, 150, static_cast<unsigned>(round)), "map");
        library->SaveToFile(file, round == 3 ? "key" : "");
        ExpectHolds(file, round == 3 ? "key" : "", ContentOf(*library));
        EXPECT_EQ(library->MapCount(), round);
    }
}
