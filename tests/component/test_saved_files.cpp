// What a save does to files, links, rights and sizes.

#include "tests/component/LibraryFixture.h"

#include <sys/stat.h>

namespace {

class SavedFiles : public LibraryTest {};

} // namespace

TEST_F(SavedFiles, OverAnUnrelatedFileKeepsThatOneUnderAFreeName) {
    const std::string file = PathOf("lib.Atlavex");
    WriteWholeFile(file, "first");
    SaveRichLibrary(file);
    EXPECT_EQ(ReadWholeFile(file + ".bak"), "first");
    const std::string library = ReadWholeFile(file);
    SaveRichLibrary(file, "key");
    EXPECT_EQ(ReadWholeFile(file + ".bak"), "first");
    EXPECT_EQ(ReadWholeFile(file + ".bak2"), library);
    const LibraryContent content = SaveRichLibrary(file);
    EXPECT_EQ(Names(), (std::vector<std::string>{"lib.Atlavex", "lib.Atlavex.bak", "lib.Atlavex.bak2",
                                                 "lib.Atlavex.bak3"}));
    ExpectHolds(file, {}, content);
}

TEST_F(SavedFiles, InPlaceUnderANewKeyAndCompactedKeepsNoCopyOfItself) {
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file);
    const auto library = Open(file);
    library->SaveToFile(file, {});
    library->SaveToFile(file, "key");
    library->Compact();
    library->SaveToFile(file, {});
    EXPECT_EQ(Names(), std::vector<std::string>{"lib.Atlavex"});
}

TEST_F(SavedFiles, UnderTwoNamesInTurnKeepsNoCopies) {
    const std::string first = PathOf("first.Atlavex"), second = PathOf("second.Atlavex");
    const auto library = NewLibrary();
    FillRichly(*library);
    for (int turn = 0; turn < 3; ++turn)
        for (const std::string& key : {std::string(), std::string("key")}) {
            MapAt(*library, 1)->SetMetadata("turn", std::to_string(turn) + key);
            library->SaveToFile(first, key);
            library->SaveToFile(first, key);
            library->SaveToFile(second, key);
            ExpectHolds(first, key, ContentOf(*library));
            ExpectHolds(second, key, ContentOf(*library));
        }
    EXPECT_EQ(Names(), (std::vector<std::string>{"first.Atlavex", "second.Atlavex"}));
}

TEST_F(SavedFiles, OverTheFileThatWasLoadedAfterASaveElsewhereKeepsNoCopy) {
    const std::string first = PathOf("first.Atlavex"), second = PathOf("second.Atlavex");
    SaveRichLibrary(first, "key");
    const auto library = Open(first, "key");
    library->SaveToFile(second, {});
    library->SaveToFile(first, "key");
    EXPECT_EQ(Names(), (std::vector<std::string>{"first.Atlavex", "second.Atlavex"}));
}

TEST_F(SavedFiles, OverAnOwnFileThatOthersChangedOrReplacedKeepsTheirs) {
    const std::string first = PathOf("first.Atlavex"), second = PathOf("second.Atlavex");
    const auto library = NewLibrary();
    FillRichly(*library);
    const auto saveBoth = [&] {
        library->SaveToFile(first, {});
        library->SaveToFile(second, {});
    };
    saveBoth();
    const auto other = Open(first);
    MapAt(*other, 1)->SetMetadata("by", "another");
    other->SaveToFile(first, {});
    saveBoth();
    ExpectHolds(first + ".bak", {}, ContentOf(*other));
    std::filesystem::copy_file(first, PathOf("copy"));
    std::filesystem::rename(PathOf("copy"), first);
    saveBoth();
    WriteWholeFile(first, "no library any more");
    saveBoth();
    EXPECT_EQ(ReadWholeFile(first + ".bak3"), "no library any more");
    EXPECT_EQ(Names(), (std::vector<std::string>{"first.Atlavex", "first.Atlavex.bak", "first.Atlavex.bak2",
                                                 "first.Atlavex.bak3", "second.Atlavex"}));
}

TEST_F(SavedFiles, OverAnOwnFileOfATimeBeforeTheLastLoadKeepsThatOne) {
    const std::string first = PathOf("first.Atlavex"), second = PathOf("second.Atlavex");
    SaveRichLibrary(second);
    const auto library = NewLibrary();
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 99, 99));
    library->SaveToFile(first, {});
    const LibraryContent before = ContentOf(*library);
    EXPECT_ERROR(library->LoadFromFile(PathOf("none"), {}), ErrorNumber::FileNotFound);
    library->LoadFromFile(second, {});
    library->SaveToFile(first, {});
    ExpectHolds(first + ".bak", {}, before);
}

TEST_F(SavedFiles, ThroughALinkReplacesTheFileAndNotTheLink) {
    const std::string file = PathOf("real.Atlavex"), link = PathOf("link.Atlavex");
    SaveRichLibrary(file);
    std::filesystem::create_symlink("real.Atlavex", link);
    const auto library = Open(link);
    MapAt(*library, 1)->SetMetadata("name", "through the link");
    for (const std::string key : {"", "key"}) {
        library->SaveToFile(link, key);
        EXPECT_TRUE(std::filesystem::is_symlink(link));
        ExpectHolds(file, key, ContentOf(*library));
    }
    EXPECT_EQ(Names(), (std::vector<std::string>{"link.Atlavex", "real.Atlavex"}));
}

TEST_F(SavedFiles, ByTheFilesOtherNameIsSavingInPlace) {
    SaveRichLibrary(PathOf("real.Atlavex"));
    const auto library = Open(PathOf("real.Atlavex"));
    library->SaveToFile(PathOf("scratch/../real.Atlavex"), {});
    std::filesystem::create_symlink(PathOf("real.Atlavex"), PathOf("link.Atlavex"));
    library->SaveToFile(PathOf("link.Atlavex"), "key");
    EXPECT_EQ(Names(), (std::vector<std::string>{"link.Atlavex", "real.Atlavex"}));
}

TEST_F(SavedFiles, KeepsTheRightsOfTheFileItReplaces) {
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file);
    const auto rights = [&] { return std::filesystem::status(file).permissions(); };
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(static_cast<mode_t>(rights()), 0666 & ~mask) << "a new file has any new file's rights";
    std::filesystem::permissions(file, std::filesystem::perms{0640});
    const auto library = Open(file);
    library->SaveToFile(file, "key");
    EXPECT_EQ(rights(), std::filesystem::perms{0640});
    library->Compact();
    EXPECT_EQ(rights(), std::filesystem::perms{0640});
}

TEST_F(SavedFiles, ThatFreesMoreThanAQuarterWritesTheFileAnew) {
    for (const std::string key : {"", "key"}) {
        const std::string file = PathOf("lib.Atlavex");
        std::filesystem::remove(file);
        const auto library = NewLibrary();
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 800, 600, 1), "large");
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 300, 200, 2), "small");
        library->SaveToFile(file, key);
        const auto size = std::filesystem::file_size(file);
        library->RemoveMap(library->MapIdAt(1));
        library->SaveToFile(file, key);
        EXPECT_LT(std::filesystem::file_size(file), size / 4);
        ExpectHolds(file, key, ContentOf(*library));
    }
    EXPECT_EQ(Names(), std::vector<std::string>{"lib.Atlavex"});
}

TEST_F(SavedFiles, ThatFreesLessLeavesTheFreePagesUntilItIsCompacted) {
    const std::string file = PathOf("lib.Atlavex");
    const auto library = NewLibrary();
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 800, 600, 1), "large");
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 300, 200, 2), "small");
    library->SaveToFile(file, {});
    const auto size = std::filesystem::file_size(file);
    library->RemoveMap(library->MapIdAt(2));
    library->SaveToFile(file, {});
    EXPECT_EQ(std::filesystem::file_size(file), size);
    library->Compact();
    EXPECT_LT(std::filesystem::file_size(file), size * 95 / 100);
    ExpectHolds(file, {}, ContentOf(*library));
}

TEST_F(SavedFiles, CompactingALibraryWithoutAFileIsRefused) {
    EXPECT_ERROR(NewLibrary()->Compact(), ErrorNumber::FileNotFound);
}

TEST_F(SavedFiles, IntoAFolderThatIsNotThereIsRefusedAndKeepsTheWork) {
    const auto library = NewLibrary();
    FillRichly(*library);
    const LibraryContent content = ContentOf(*library);
    for (const std::string name : {"no/such/folder/lib.Atlavex", "scratch"}) {
        const Outcome outcome = OutcomeOf([&] { library->SaveToFile(PathOf(name), {}); });
        EXPECT_EQ(outcome.code, static_cast<int>(ErrorNumber::FileNotWritable)) << outcome.description;
        EXPECT_NE(outcome.description.find(name), std::string::npos) << outcome.description;
        EXPECT_EQ(ContentOf(*library), content);
    }
    library->SaveToFile(PathOf("lib.Atlavex"), {});
    ExpectHolds(PathOf("lib.Atlavex"), {}, content);
}

TEST_F(SavedFiles, UnderNamesOfAnyScriptAndLengthWorks) {
    for (const std::string& name :
         {std::string("Übersicht – Карта – 地図 – خريطة 🗺.Atlavex"),
          std::string("a 'quoted' \"name\" ?#%.Atlavex"), std::string("line\nbreak.Atlavex"),
          std::string(239, 'x') + ".Atlavex", std::string("-")}) {
        const LibraryContent content = SaveRichLibrary(PathOf(name));
        ExpectHolds(PathOf(name), {}, content);
        const auto library = Open(PathOf(name));
        library->SaveToFile(PathOf(name), {});
        std::filesystem::remove(PathOf(name));
    }
    EXPECT_TRUE(Names().empty());
}

TEST_F(SavedFiles, UnderANameThatIsTooLongForAJournalBesideItIsRefused) {
    const std::string name = std::string(240, 'x') + ".Atlavex";
    const auto library = NewLibrary();
    EXPECT_ERROR(library->SaveToFile(PathOf(name), {}), ErrorNumber::FileNotWritable);
    EXPECT_TRUE(Names().empty());
}
