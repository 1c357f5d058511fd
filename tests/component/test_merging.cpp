// Adding the maps and icons of another file.

#include "tests/component/LibraryFixture.h"

#include <gmock/gmock.h>

#include <set>

namespace {

class LibraryMerging : public LibraryTest {
protected:
    /// What a library gives back once the other has been merged into it: both in order, and fresh identifiers
    /// where one of the second was taken, as they turned out.
    static LibraryContent Joined(const LibraryContent& first, const LibraryContent& second,
                                 const LibraryContent& turnedOut) {
        LibraryContent joined = first;
        std::set<std::string> used;
        for (const MapContent& map : first.maps)
            used.insert(map.identifier);
        for (const MapContent& map : second.maps) {
            joined.maps.push_back(map);
            const std::size_t at = joined.maps.size() - 1;
            if (!map.identifier.empty() && !used.insert(map.identifier).second && at < turnedOut.maps.size())
                joined.maps.back().identifier = turnedOut.maps[at].identifier;
        }
        joined.icons.insert(joined.icons.end(), second.icons.begin(), second.icons.end());
        return joined;
    }
    static void ExpectIdentifiersDiffer(const LibraryContent& content) {
        std::set<std::string> used;
        for (const MapContent& map : content.maps)
            if (!map.identifier.empty()) {
                EXPECT_TRUE(used.insert(map.identifier).second) << map.identifier;
            }
    }
    LibraryContent SaveOther(const std::string& file, const std::string& key) {
        const auto library = NewLibrary();
        const auto map = AddMap(*library, MakeSheet(PixelFormat::Grey, 90, 170, 5), "other");
        map->SetIdentifier("{other}");
        map->SetMetadata("name", "Other");
        AddIcon(*library, MakeSheet(PixelFormat::Palette, 20, 20, 6), "other icon");
        library->SaveToFile(file, key);
        return ContentOf(*library);
    }
};

} // namespace

TEST_F(LibraryMerging, AddsEverythingInOrderWhateverTheTwoKeys) {
    const std::vector<std::string> keys{"", "one", "two"};
    for (const std::string& own : keys)
        for (const std::string& others : keys)
            for (const bool direct : {false, true}) {
                SCOPED_TRACE("'" + others + "' into '" + own + "'" + (direct ? ", directly" : ""));
                const std::string file = PathOf("lib.Atlavex"), other = PathOf("other.Atlavex");
                std::filesystem::remove(file);
                std::filesystem::remove(other);
                const LibraryContent first = SaveRichLibrary(file, own);
                const LibraryContent second = SaveOther(other, others);
                const std::string otherBytes = ReadWholeFile(other);
                const auto library = direct ? OpenDirectly(file, own) : Open(file, own);
                library->MergeFromFile(other, others);
                EXPECT_TRUE(library->KeyFitted());
                EXPECT_EQ(ContentOf(*library), Joined(first, second, {}));
                library->SaveToFile(file, own);
                ExpectHolds(file, own, Joined(first, second, {}));
                EXPECT_TRUE(ReadWholeFile(other) == otherBytes);
            }
}

TEST_F(LibraryMerging, IntoALibraryWithoutAFileWorks) {
    for (const std::string key : {"", "key"}) {
        const std::string other = PathOf("other.Atlavex");
        std::filesystem::remove(other);
        const LibraryContent second = SaveOther(other, key);
        const auto library = NewLibrary();
        library->MergeFromFile(other, key);
        EXPECT_EQ(ContentOf(*library), second);
        EXPECT_EQ(library->FileName(), "");
    }
}

TEST_F(LibraryMerging, TheFileThatIsOpenDoublesIt) {
    for (const std::string key : {"", "key"}) {
        for (const bool direct : {false, true}) {
            const std::string file = PathOf("lib.Atlavex");
            std::filesystem::remove(file);
            const LibraryContent content = SaveRichLibrary(file, key);
            const auto library = direct ? OpenDirectly(file, key) : Open(file, key);
            library->MergeFromFile(file, key);
            const LibraryContent twice = ContentOf(*library);
            EXPECT_EQ(twice, Joined(content, content, twice));
            ExpectIdentifiersDiffer(twice);
            library->SaveToFile(file, key);
            ExpectHolds(file, key, twice);
        }
    }
}

TEST_F(LibraryMerging, TheFileThatIsOpenGivesWhatIsStoredAndNotWhatIsUnsaved) {
    const std::string file = PathOf("lib.Atlavex");
    const LibraryContent stored = SaveRichLibrary(file);
    const auto library = Open(file);
    MapAt(*library, 1)->SetMetadata("name", "unsaved");
    library->RemoveIcon(library->IconIdAt(1));
    const LibraryContent edited = ContentOf(*library);
    library->MergeFromFile(file, {});
    EXPECT_EQ(ContentOf(*library), Joined(edited, stored, ContentOf(*library)));
}

TEST_F(LibraryMerging, TheFileThatIsOpenUnderAWrongKeyAddsNothing) {
    const std::string file = PathOf("lib.Atlavex");
    const LibraryContent content = SaveRichLibrary(file, "key");
    const auto library = Open(file, "key");
    library->MergeFromFile(file, "wrong");
    EXPECT_FALSE(library->KeyFitted());
    EXPECT_EQ(ContentOf(*library), content);
}

TEST_F(LibraryMerging, TheSameFileTwiceAddsItTwice) {
    const std::string file = PathOf("lib.Atlavex"), other = PathOf("other.Atlavex");
    const LibraryContent first = SaveRichLibrary(file);
    const LibraryContent second = SaveOther(other, "key");
    const auto library = Open(file);
    library->MergeFromFile(other, "key");
    library->MergeFromFile(other, "key");
    const LibraryContent all = ContentOf(*library);
    EXPECT_EQ(all, Joined(Joined(first, second, all), second, all));
    ExpectIdentifiersDiffer(all);
    library->SaveToFile(file, "key");
    ExpectHolds(file, "key", all);
}

TEST_F(LibraryMerging, AFreshIdentifierHasTheFormOfAGuid) {
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file);
    const auto library = Open(file);
    library->MergeFromFile(file, {});
    EXPECT_THAT(MapAt(*library, 3)->Identifier(),
                testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}"));
}

TEST_F(LibraryMerging, MapsWithoutIdentifierStayWithout) {
    const std::string file = PathOf("lib.Atlavex");
    const auto library = NewLibrary();
    AddMap(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    library->SaveToFile(file, {});
    library->MergeFromFile(file, {});
    EXPECT_EQ(MapAt(*library, 2)->Identifier(), "");
}

TEST_F(LibraryMerging, AFileOfIconsAloneChangesTheIconsAlone) {
    const std::string file = PathOf("icons.Atlavex");
    const auto icons = NewLibrary();
    AddIcon(*icons, MakeSheet(PixelFormat::Rgba, 8, 8));
    icons->SaveToFile(file, "key");
    const auto library = NewLibrary();
    library->MergeFromFile(file, "key");
    EXPECT_EQ(library->MapCount(), 0);
    EXPECT_EQ(library->IconCount(), 1);
    EXPECT_EQ(ContentOf(*library), ContentOf(*icons));
}

TEST_F(LibraryMerging, AnEmptyFileAddsNothing) {
    NewLibrary()->SaveToFile(PathOf("empty.Atlavex"), {});
    const auto library = NewLibrary();
    FillRichly(*library);
    const LibraryContent content = ContentOf(*library);
    library->MergeFromFile(PathOf("empty.Atlavex"), {});
    EXPECT_TRUE(library->KeyFitted());
    EXPECT_EQ(ContentOf(*library), content);
}

TEST_F(LibraryMerging, UnderAWrongKeyAddsNothingAndIsNoError) {
    const std::string other = PathOf("other.Atlavex");
    SaveOther(other, "right");
    const auto library = NewLibrary();
    FillRichly(*library);
    const LibraryContent content = ContentOf(*library);
    for (const std::string key : {"", "wrong", "Right", "right "}) {
        library->MergeFromFile(other, key);
        EXPECT_FALSE(library->KeyFitted());
        EXPECT_EQ(ContentOf(*library), content);
    }
    library->MergeFromFile(other, "right");
    EXPECT_TRUE(library->KeyFitted());
    EXPECT_EQ(library->MapCount(), 3);
}

TEST_F(LibraryMerging, WhatIsNoLibraryIsRefusedAndAddsNothing) {
    const auto library = NewLibrary();
    FillRichly(*library);
    const LibraryContent content = ContentOf(*library);
    WriteWholeFile(PathOf("text"), "just text");
    WriteWholeFile(PathOf("empty"), "");
    EXPECT_ERROR(library->MergeFromFile(PathOf("text"), {}), ErrorNumber::NotALibrary);
    EXPECT_ERROR(library->MergeFromFile(PathOf("empty"), {}), ErrorNumber::NotALibrary);
    EXPECT_ERROR(library->MergeFromFile(PathOf("missing"), {}), ErrorNumber::FileNotFound);
    EXPECT_ERROR(library->MergeFromFile(PathOf("scratch"), {}), ErrorNumber::FileNotReadable);
    EXPECT_EQ(ContentOf(*library), content);
}

TEST_F(LibraryMerging, KeepsTheOpenFileAndItsKey) {
    const std::string file = PathOf("lib.Atlavex"), other = PathOf("other.Atlavex");
    SaveRichLibrary(file, "own");
    SaveOther(other, "others");
    const auto library = Open(file, "own");
    library->MergeFromFile(other, "others");
    EXPECT_EQ(library->FileName(), file);
    EXPECT_TRUE(library->IsSealed());
    library->SaveToFile(file, "own");
    EXPECT_FALSE(Open(file, "others")->KeyFitted());
}
