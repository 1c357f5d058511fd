// Saving under a new name, in place and under another key.

#include "tests/component/LibraryFixture.h"

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

constexpr QuorvantDatum::Numbers SomeOtherDatum{6378137, 0.006, 1, 2, 3, 4, 5, 6, 7};

QuorvantDatum::Numbers FormerDatum(AtlavexLibrary& library) {
    return FirstMap(library)->MapGeoreference().datum.value().AsNumbers();
}
std::array<double, 7> FormerGrid(AtlavexLibrary& library) {
    return FirstMap(library)->MapGeoreference().grid.value().values;
}

/// The same corners, with another system in part.
void ScaleAnew(AtlavexLibrary& library, const QuorvantDatum::Numbers& datum,
               const std::array<double, 7>& grid, std::int32_t identifier = 7, const char* zone = "32") {
    const auto map = FirstMap(library);
    const std::vector<ReferencePoint> corners = map->MapGeoreference().points;
    map->SetMapDatum(datum);
    map->SetMapGrid(1, 32, grid);
    map->SetGridIdentifier(identifier);
    map->SetZone(zone);
    map->SetScalingCorners(corners.at(0), corners.at(1), corners.at(2), corners.at(3));
}

const std::vector<Edit>& SimpleEdits() {
    static const std::vector<Edit> edits{
        {"rename a map", [](AtlavexLibrary& l) { FirstMap(l)->SetMetadata("name", "Nord"); }},
        {"new map metadata", [](AtlavexLibrary& l) { FirstMap(l)->SetMetadata("neu", "x"); }},
        {"remove map metadata", [](AtlavexLibrary& l) { FirstMap(l)->RemoveMetadata("zeta"); }},
        {"identifier", [](AtlavexLibrary& l) { FirstMap(l)->SetIdentifier("{another}"); }},
        {"zoom", [](AtlavexLibrary& l) { FirstMap(l)->SetZoom(3.5); }},
        {"datum", [](AtlavexLibrary& l) { ScaleAnew(l, SomeOtherDatum, FormerGrid(l)); }},
        {"grid",
         [](AtlavexLibrary& l) {
             ScaleAnew(l, FormerDatum(l), {0, 15, 0.9996, 500000, 0, 0, 0});
         }},
        {"grid identifier", [](AtlavexLibrary& l) { ScaleAnew(l, FormerDatum(l), FormerGrid(l), 12); }},
        {"zone", [](AtlavexLibrary& l) { ScaleAnew(l, FormerDatum(l), FormerGrid(l), 7, "4204"); }},
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
