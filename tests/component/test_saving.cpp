// Saving under a new name, in place and under another key.

#include "tests/component/LibraryFixture.h"

#include <sys/stat.h>

namespace {

class LibrarySaving : public LibraryTest {};

/// One change that a user may make, and its effect on what the library gives back.
struct Edit {
    const char* name;
    std::function<void(AtlavexLibrary&)> make;
};

std::shared_ptr<AtlavexMap> FirstMap(AtlavexLibrary& library) {
    return library.GetMap(library.MapIdAt(1));
}
std::shared_ptr<AtlavexIcon> FirstIcon(AtlavexLibrary& library) {
    return library.GetIcon(library.IconIdAt(1));
}

const std::vector<Edit>& SimpleEdits() {
    static const std::vector<Edit> edits{
        {"rename a map", [](AtlavexLibrary& l) { FirstMap(l)->SetMetadata("name", "Nord"); }},
        {"new map metadata", [](AtlavexLibrary& l) { FirstMap(l)->SetMetadata("neu", "x"); }},
        {"remove map metadata", [](AtlavexLibrary& l) { FirstMap(l)->RemoveMetadata("zeta"); }},
        {"identifier", [](AtlavexLibrary& l) { FirstMap(l)->SetIdentifier("{another}"); }},
        {"zoom", [](AtlavexLibrary& l) { FirstMap(l)->SetZoom(3.5); }},
        {"datum",
         [](AtlavexLibrary& l) {
             FirstMap(l)->SetMapDatum({6378137, 0.006, 1, 2, 3, 4, 5, 6, 7});
         }},
        {"grid",
         [](AtlavexLibrary& l) {
             FirstMap(l)->SetMapGrid(1, 33, {0, 15, 0.9996, 500000, 0, 0, 0});
         }},
        {"grid identifier", [](AtlavexLibrary& l) { FirstMap(l)->SetGridIdentifier(12); }},
        {"zone", [](AtlavexLibrary& l) { FirstMap(l)->SetZone("4204"); }},
        {"three points",
         [](AtlavexLibrary& l) {
             FirstMap(l)->SetScalingThreePoints({1, 2, 3, 4}, {5, 9, 99, 5}, {0, -3, 7, 88});
         }},
        {"rename an icon", [](AtlavexLibrary& l) { FirstIcon(l)->SetMetadata("name", "Kirche"); }},
        {"remove icon metadata", [](AtlavexLibrary& l) { FirstIcon(l)->RemoveMetadata("version"); }},
        {"offset x", [](AtlavexLibrary& l) { FirstIcon(l)->SetOffsetX(-2147483647 - 1); }},
        {"offset y", [](AtlavexLibrary& l) { FirstIcon(l)->SetOffsetY(12); }},
        {"remove the first map", [](AtlavexLibrary& l) { l.RemoveMap(l.MapIdAt(1)); }},
        {"remove the last map", [](AtlavexLibrary& l) { l.RemoveMap(l.MapIdAt(l.MapCount())); }},
        {"remove the first icon", [](AtlavexLibrary& l) { l.RemoveIcon(l.IconIdAt(1)); }},
        {"remove everything",
         [](AtlavexLibrary& l) {
             while (l.MapCount() > 0)
                 l.RemoveMap(l.MapIdAt(1));
             while (l.IconCount() > 0)
                 l.RemoveIcon(l.IconIdAt(1));
         }},
    };
    return edits;
}

} // namespace

TEST_F(LibrarySaving, KeepsEverything) {
    for (const std::string key : {"", "a key"}) {
        const std::string file = PathOf("lib" + key + ".Atlavex");
        const auto library = NewLibrary();
        FillRichly(*library);
        const LibraryContent before = ContentOf(*library);
        EXPECT_EQ(library->FileName(), "");
        EXPECT_FALSE(library->IsSealed());
        library->SaveToFile(file, key);
        EXPECT_EQ(library->FileName(), file);
        EXPECT_EQ(library->IsSealed(), !key.empty());
        EXPECT_EQ(ContentOf(*library), before);
        ExpectHolds(file, key, before);
    }
}

TEST_F(LibrarySaving, LeavesNothingBesideTheFile) {
    SaveRichLibrary(PathOf("lib.Atlavex"), "key");
    EXPECT_EQ(Names(), std::vector<std::string>{"lib.Atlavex"});
}

TEST_F(LibrarySaving, AnEmptyLibraryIsALibrary) {
    for (const std::string key : {"", "k"}) {
        NewLibrary()->SaveToFile(PathOf("empty.Atlavex"), key);
        ExpectHolds(PathOf("empty.Atlavex"), key, {});
    }
}

TEST_F(LibrarySaving, InPlaceKeepsEveryEdit) {
    for (const std::string key : {"", "key"})
        for (const Edit& edit : SimpleEdits()) {
            SCOPED_TRACE(edit.name);
            const std::string file = PathOf("lib.Atlavex");
            std::filesystem::remove(file);
            const LibraryContent former = SaveRichLibrary(file, key);
            const auto library = Open(file, key);
            edit.make(*library);
            const LibraryContent edited = ContentOf(*library);
            EXPECT_NE(edited, former) << "the edit changes nothing";
            library->SaveToFile(file, key);
            EXPECT_EQ(ContentOf(*library), edited);
            ExpectHolds(file, key, edited);
        }
}

TEST_F(LibrarySaving, InPlaceKeepsAddedMapsAndIcons) {
    for (const std::string key : {"", "key"})
        for (const bool direct : {false, true}) {
            const std::string file = PathOf("lib.Atlavex");
            std::filesystem::remove(file);
            SaveRichLibrary(file, key);
            const auto library = direct ? OpenDirectly(file, key) : Open(file, key);
            const Sheet sheet = MakeSheet(PixelFormat::Rgba, 200, 100, 9);
            AddMap(*library, sheet, "added")->SetMetadata("name", "Added");
            AddIcon(*library, MakeSheet(PixelFormat::Rgb, 3, 3, 8), "added icon")->SetOffsetX(5);
            const LibraryContent edited = ContentOf(*library);
            ASSERT_EQ(edited.maps.size(), 3U);
            EXPECT_EQ(edited.maps[2].sheet, sheet);
            library->SaveToFile(file, key);
            EXPECT_EQ(ContentOf(*library), edited);
            ExpectHolds(file, key, edited);
        }
}

TEST_F(LibrarySaving, OftenInPlaceKeepsThePresentState) {
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file);
    const auto library = Open(file);
    for (int round = 0; round < 10; ++round) {
        FirstMap(*library)->SetMetadata("round", std::to_string(round));
        AddIcon(*library, MakeSheet(PixelFormat::Grey, 4, 4, static_cast<unsigned>(round)));
        if (round % 3 == 2)
            library->RemoveIcon(library->IconIdAt(2));
        library->SaveToFile(file, {});
        ExpectHolds(file, {}, ContentOf(*library));
    }
}

TEST_F(LibrarySaving, InPlaceOfNothingChangedStillCounts) {
    const std::string file = PathOf("lib.Atlavex");
    const LibraryContent content = SaveRichLibrary(file, "key");
    const auto library = Open(file, "key");
    library->SaveToFile(file, "key");
    library->SaveToFile(file, "key");
    ExpectHolds(file, "key", content);
}

TEST_F(LibrarySaving, UnderAnotherNameLeavesTheFormerFileAsItWas) {
    for (const std::string key : {"", "key"})
        for (const bool direct : {false, true}) {
            SCOPED_TRACE(testing::Message() << "key '" << key << "', direct " << direct);
            const std::string first = PathOf("first.Atlavex"), second = PathOf("second.Atlavex");
            std::filesystem::remove(first);
            std::filesystem::remove(second);
            SaveRichLibrary(first, key);
            const std::string bytes = ReadWholeFile(first);
            const auto library = direct ? OpenDirectly(first, key) : Open(first, key);
            FirstMap(*library)->SetMetadata("name", "changed");
            library->RemoveIcon(library->IconIdAt(2));
            AddMap(*library, MakeSheet(PixelFormat::Grey, 99, 99), "added");
            const LibraryContent edited = ContentOf(*library);
            library->SaveToFile(second, key);
            EXPECT_EQ(library->FileName(), second);
            EXPECT_TRUE(ReadWholeFile(first) == bytes);
            ExpectHolds(second, key, edited);
            FirstMap(*library)->SetMetadata("name", "changed again");
            library->SaveToFile(second, key);
            EXPECT_TRUE(ReadWholeFile(first) == bytes);
            ExpectHolds(second, key, ContentOf(*library));
        }
}

TEST_F(LibrarySaving, UnderAnotherKeyKeepsEverything) {
    const std::vector<std::string> keys{"", "one", "two"};
    for (const std::string& from : keys)
        for (const std::string& to : keys)
            for (const bool sameName : {true, false}) {
                SCOPED_TRACE("from '" + from + "' to '" + to + "'");
                const std::string file = PathOf("lib.Atlavex");
                const std::string target = sameName ? file : PathOf("other.Atlavex");
                std::filesystem::remove(file);
                std::filesystem::remove(target);
                SaveRichLibrary(file, from);
                const auto library = Open(file, from);
                AddMap(*library, MakeSheet(PixelFormat::Rgb, 77, 130), "unsaved yet");
                const LibraryContent content = ContentOf(*library);
                library->SaveToFile(target, to);
                EXPECT_EQ(library->IsSealed(), !to.empty());
                EXPECT_EQ(library->IsEncrypted(target), !to.empty());
                ExpectHolds(target, to, content);
                if (!to.empty()) {
                    EXPECT_EQ(Open(target, from)->KeyFitted(), from == to);
                }
                FirstMap(*library)->SetMetadata("after", "the new key");
                library->SaveToFile(target, to);
                ExpectHolds(target, to, ContentOf(*library));
            }
    EXPECT_EQ(Names(), (std::vector<std::string>{"lib.Atlavex", "other.Atlavex"}));
}

TEST_F(LibrarySaving, OverAnUnrelatedFileKeepsThatOneUnderAFreeName) {
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

TEST_F(LibrarySaving, InPlaceUnderANewKeyAndCompactedKeepsNoCopyOfItself) {
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file);
    const auto library = Open(file);
    library->SaveToFile(file, {});
    library->SaveToFile(file, "key");
    library->Compact();
    library->SaveToFile(file, {});
    EXPECT_EQ(Names(), std::vector<std::string>{"lib.Atlavex"});
}

TEST_F(LibrarySaving, ThroughALinkReplacesTheFileAndNotTheLink) {
    const std::string file = PathOf("real.Atlavex"), link = PathOf("link.Atlavex");
    SaveRichLibrary(file);
    std::filesystem::create_symlink("real.Atlavex", link);
    const auto library = Open(link);
    FirstMap(*library)->SetMetadata("name", "through the link");
    for (const std::string key : {"", "key"}) {
        library->SaveToFile(link, key);
        EXPECT_TRUE(std::filesystem::is_symlink(link));
        ExpectHolds(file, key, ContentOf(*library));
    }
    EXPECT_EQ(Names(), (std::vector<std::string>{"link.Atlavex", "real.Atlavex"}));
}

TEST_F(LibrarySaving, ByTheFilesOtherNameIsSavingInPlace) {
    SaveRichLibrary(PathOf("real.Atlavex"));
    const auto library = Open(PathOf("real.Atlavex"));
    library->SaveToFile(PathOf("scratch/../real.Atlavex"), {});
    std::filesystem::create_symlink(PathOf("real.Atlavex"), PathOf("link.Atlavex"));
    library->SaveToFile(PathOf("link.Atlavex"), "key");
    EXPECT_EQ(Names(), (std::vector<std::string>{"link.Atlavex", "real.Atlavex"}));
}

TEST_F(LibrarySaving, KeepsTheRightsOfTheFileItReplaces) {
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

TEST_F(LibrarySaving, ThatFreesMoreThanAQuarterWritesTheFileAnew) {
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

TEST_F(LibrarySaving, ThatFreesLessLeavesTheFreePagesUntilItIsCompacted) {
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

TEST_F(LibrarySaving, CompactingALibraryWithoutAFileIsRefused) {
    EXPECT_ERROR(NewLibrary()->Compact(), ErrorNumber::FileNotFound);
}

TEST_F(LibrarySaving, IntoAFolderThatIsNotThereIsRefusedAndKeepsTheWork) {
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

TEST_F(LibrarySaving, UnderNamesOfAnyScriptAndLengthWorks) {
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

TEST_F(LibrarySaving, UnderANameThatIsTooLongForAJournalBesideItIsRefused) {
    const std::string name = std::string(240, 'x') + ".Atlavex";
    const auto library = NewLibrary();
    EXPECT_ERROR(library->SaveToFile(PathOf(name), {}), ErrorNumber::FileNotWritable);
    EXPECT_TRUE(Names().empty());
}

TEST_F(LibrarySaving, UnderAKeyThatCostsWhatNoReaderAcceptsIsRefused) {
    for (const auto& [operations, memory] : {std::pair{0, 8}, {5, 8}, {1, 7}, {1, 513}, {-1, 8}, {1, -1}}) {
        LibraryOptions options = Options();
        options.keyOperations = operations;
        options.keyMemoryMiB = memory;
        const auto library = CreateAtlavexLibrary(options);
        EXPECT_ERROR(library->SaveToFile(PathOf("lib.Atlavex"), "key"), ErrorNumber::InvalidArgument);
    }
    EXPECT_TRUE(Names().empty());
}

TEST_F(LibrarySaving, DirectWorkThatIsNotSavedLeavesTheFileAsItWas) {
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

TEST_F(LibrarySaving, DirectWorkThatIsRemovedBeforeTheSaveLeavesNothingInTheFile) {
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

TEST_F(LibrarySaving, DirectWorkIsPossibleAgainAfterEachSave) {
    const std::string file = PathOf("lib.Atlavex");
    const auto library = NewDirectLibrary();
    for (int round = 1; round <= 4; ++round) {
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 150, 150, static_cast<unsigned>(round)), "map");
        library->SaveToFile(file, round == 3 ? "key" : "");
        ExpectHolds(file, round == 3 ? "key" : "", ContentOf(*library));
        EXPECT_EQ(library->MapCount(), round);
    }
}
