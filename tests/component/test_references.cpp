// References and the life of the objects that the library hands out.

#include "component/library/LibraryObject.h"
#include "tests/component/LibraryFixture.h"

#include <compare>

namespace {

/// A number that counts how often it is compared.
struct CountedNumber {
    std::int64_t value;
    int* comparisons;

    std::strong_ordering operator<=>(const CountedNumber& other) const {
        ++*comparisons;
        return value <=> other.value;
    }
    bool operator==(const CountedNumber& other) const { return (*this <=> other) == 0; }
};

struct Numbered {
    CountedNumber id;
};

/// How many comparisons it takes to look up each object of so many once.
int ComparisonsForAll(std::int64_t count) {
    int comparisons = 0;
    std::vector<std::shared_ptr<Numbered>> objects;
    for (std::int64_t number = 1; number <= count; ++number)
        objects.push_back(std::make_shared<Numbered>(CountedNumber{3 * number, &comparisons}));
    for (std::int64_t number = 1; number <= count; ++number)
        EXPECT_EQ((*FindId(objects, CountedNumber{3 * number, &comparisons}))->id.value, 3 * number);
    EXPECT_EQ(FindId(objects, CountedNumber{4, &comparisons}), objects.end());
    return comparisons;
}

class LibraryReferences : public LibraryTest {
protected:
    /// Whatever is asked of a map that is gone, it says so.
    static void ExpectGone(AtlavexMap& map) {
        const std::vector<std::function<void()>> uses{
            [&] { map.Name(); },
            [&] { map.Identifier(); },
            [&] { map.SetIdentifier("x"); },
            [&] { map.Width(); },
            [&] { map.Height(); },
            [&] { map.Layout(); },
            [&] { map.Format(); },
            [&] { map.ColourTable(); },
            [&] { map.Zoom(); },
            [&] { map.SetZoom(2); },
            [&] { map.GetMetadata("name"); },
            [&] { map.SetMetadata("name", "x"); },
            [&] { map.RemoveMetadata("name"); },
            [&] { map.MetadataCount(); },
            [&] { map.MetadataKeyAt(1); },
            [&] { map.MetadataValueAt(1); },
            [&] { map.SetMapDatum(QuorvantDatum().AsNumbers()); },
            [&] {
                map.SetMapGrid(1, 32, {0, 9, 0.9996, 500000, 0, 0, 0});
            },
            [&] { map.SetGridIdentifier(1); },
            [&] { map.SetZone("1"); },
            [&] {
                map.SetScalingThreePoints({0, 0, 0, 0}, {1, 0, 9, 0}, {0, 1, 0, 9});
            },
            [&] {
                map.SetScalingCorners({0, 1, 0, 0}, {0, 0, 0, 9}, {1, 1, 9, 0}, {1, 0, 9, 9});
            },
            [&] { map.IsScaled(); },
            [&] { map.HasGrid(); },
            [&] { map.MapGeoreference(); },
            [&] {
                map.PixelToWorld({0, 0});
            },
            [&] {
                map.WorldToPixel({0, 0});
            },
            [&] {
                map.WorldToWgs84({0, 0});
            },
            [&] {
                map.Wgs84ToWorld({0, 0});
            },
            [&] {
                std::shared_ptr<const AtlavexImage> image;
                map.RenderView(0, 0, 10, 10, image);
            },
            [&] { map.ReadPixels([](std::span<const std::uint8_t>, std::int32_t) { FAIL(); }); },
            [&] { map.ExportTiles("/tmp", ".png"); }};
        for (std::size_t use = 0; use < uses.size(); ++use) {
            SCOPED_TRACE(testing::Message() << "use " << use);
            EXPECT_ERROR(uses[use](), ErrorNumber::NoSuchMap);
        }
    }
    static void ExpectGone(AtlavexIcon& icon) {
        const std::vector<std::function<void()>> uses{[&] { icon.Name(); },
                                                      [&] { icon.Image(); },
                                                      [&] { icon.PngFile(); },
                                                      [&] { icon.OffsetX(); },
                                                      [&] { icon.OffsetY(); },
                                                      [&] { icon.SetOffsetX(1); },
                                                      [&] { icon.SetOffsetY(1); },
                                                      [&] { icon.GetMetadata("name"); },
                                                      [&] { icon.SetMetadata("name", "x"); },
                                                      [&] { icon.RemoveMetadata("name"); },
                                                      [&] { icon.MetadataCount(); },
                                                      [&] { icon.MetadataKeyAt(1); },
                                                      [&] { icon.MetadataValueAt(1); }};
        for (std::size_t use = 0; use < uses.size(); ++use) {
            SCOPED_TRACE(testing::Message() << "use " << use);
            EXPECT_ERROR(uses[use](), ErrorNumber::NoSuchIcon);
        }
    }
    /// Uses the object as an editor does, so that it has looked at its file.
    static void LookAt(AtlavexMap& map) {
        std::shared_ptr<const AtlavexImage> image;
        EXPECT_TRUE(map.RenderView(0, 0, 50, 50, image));
    }
};

} // namespace

TEST_F(LibraryReferences, GiveTheSameObjectEveryTime) {
    const auto library = NewLibrary();
    FillRichly(*library);
    for (const std::int32_t position : {1, 2}) {
        EXPECT_EQ(MapAt(*library, position), MapAt(*library, position));
        EXPECT_EQ(IconAt(*library, position), IconAt(*library, position));
    }
    EXPECT_NE(MapAt(*library, 1), MapAt(*library, 2));
    EXPECT_NE(library->MapIdAt(1), library->MapIdAt(2));
}

TEST_F(LibraryReferences, AnAddedMapOrIconIsTheLastAndTheSameObject) {
    const auto library = NewLibrary();
    FillRichly(*library);
    const auto map = AddMap(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    const auto icon = AddIcon(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    EXPECT_EQ(MapAt(*library, library->MapCount()), map);
    EXPECT_EQ(IconAt(*library, library->IconCount()), icon);
}

TEST_F(LibraryReferences, StayThroughSavesMergesAndRemovals) {
    const std::string file = PathOf("lib.Atlavex");
    const auto library = NewLibrary();
    FillRichly(*library);
    const std::string mapId = library->MapIdAt(2), iconId = library->IconIdAt(2);
    const auto map = library->GetMap(mapId);
    const auto icon = library->GetIcon(iconId);
    const MapContent content = ContentOf(*map);
    const std::vector<std::function<void()>> operations{
        [&] { library->SaveToFile(file, {}); },
        [&] { library->SaveToFile(file, {}); },
        [&] { library->SaveToFile(file, "key"); },
        [&] { library->MergeFromFile(file, "key"); },
        [&] { library->SaveToFile(PathOf("other.Atlavex"), "key"); },
        [&] { library->Compact(); },
        [&] { library->RemoveMap(library->MapIdAt(1)); },
        [&] { library->RemoveIcon(library->IconIdAt(1)); },
        [&] { library->SaveToFile(PathOf("other.Atlavex"), "key"); },
        [&] { AddMap(*library, MakeSheet(PixelFormat::Grey, 9, 9)); },
        [&] { EXPECT_ERROR(library->LoadFromFile(PathOf("missing"), {}), ErrorNumber::FileNotFound); }};
    for (const auto& operation : operations) {
        operation();
        EXPECT_EQ(library->GetMap(mapId), map);
        EXPECT_EQ(library->GetIcon(iconId), icon);
        EXPECT_EQ(ContentOf(*map), content);
    }
    EXPECT_EQ(library->MapIdAt(1), mapId);
    EXPECT_EQ(library->IconIdAt(1), iconId);
}

TEST_F(LibraryReferences, OutsideThePositionsAreRefused) {
    const auto library = NewLibrary();
    FillRichly(*library);
    for (const std::int32_t position : {0, 3, -1, 2147483647, -2147483647 - 1}) {
        EXPECT_ERROR(library->MapIdAt(position), ErrorNumber::NoSuchMap);
        EXPECT_ERROR(library->IconIdAt(position), ErrorNumber::NoSuchIcon);
    }
}

TEST_F(LibraryReferences, ThatStandForNothingAreRefused) {
    const auto library = NewLibrary();
    FillRichly(*library);
    const std::string mapId = library->MapIdAt(1), iconId = library->IconIdAt(1);
    for (const std::string& reference :
         {std::string(), std::string("m"), iconId, mapId + "x", mapId + "0000", std::string("m-1"),
          std::string("m99999999999999999999999"), std::string("name")}) {
        SCOPED_TRACE(reference);
        EXPECT_ERROR(library->GetMap(reference), ErrorNumber::NoSuchMap);
        EXPECT_ERROR(library->RemoveMap(reference), ErrorNumber::NoSuchMap);
    }
    for (const std::string& reference : {std::string(), mapId, iconId + "x"}) {
        EXPECT_ERROR(library->GetIcon(reference), ErrorNumber::NoSuchIcon);
        EXPECT_ERROR(library->RemoveIcon(reference), ErrorNumber::NoSuchIcon);
    }
    EXPECT_EQ(library->MapCount(), 2);
    EXPECT_EQ(library->IconCount(), 2);
}

TEST_F(LibraryReferences, OfRemovedObjectsAreGoneAndSoAreTheObjects) {
    const auto library = NewLibrary();
    FillRichly(*library);
    const std::string mapId = library->MapIdAt(1), iconId = library->IconIdAt(1);
    const auto map = library->GetMap(mapId);
    const auto icon = library->GetIcon(iconId);
    LookAt(*map);
    icon->Image();
    library->RemoveMap(mapId);
    library->RemoveIcon(iconId);
    EXPECT_EQ(library->MapCount(), 1);
    EXPECT_EQ(library->IconCount(), 1);
    ExpectGone(*map);
    ExpectGone(*icon);
    EXPECT_ERROR(library->GetMap(mapId), ErrorNumber::NoSuchMap);
    EXPECT_ERROR(library->GetIcon(iconId), ErrorNumber::NoSuchIcon);
    EXPECT_ERROR(library->RemoveMap(mapId), ErrorNumber::NoSuchMap);
    EXPECT_ERROR(library->RemoveIcon(iconId), ErrorNumber::NoSuchIcon);
}

TEST_F(LibraryReferences, ARemovedObjectsReferenceIsNotGivenAgain) {
    const auto library = NewLibrary();
    FillRichly(*library);
    const std::string reference = library->MapIdAt(2);
    library->RemoveMap(reference);
    AddMap(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    EXPECT_NE(library->MapIdAt(2), reference);
    EXPECT_ERROR(library->GetMap(reference), ErrorNumber::NoSuchMap);
}

TEST_F(LibraryReferences, ObjectsAreGoneWhenAnotherFileIsLoaded) {
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file);
    const auto library = Open(file);
    const auto map = MapAt(*library, 1);
    const auto icon = IconAt(*library, 1);
    LookAt(*map);
    library->LoadFromFile(file, {});
    ExpectGone(*map);
    ExpectGone(*icon);
    EXPECT_NE(MapAt(*library, 1), map);
}

TEST_F(LibraryReferences, ObjectsAreGoneWithTheirLibraryAndHoldNoFile) {
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file);
    auto library = Open(file);
    const auto map = MapAt(*library, 1);
    const auto icon = IconAt(*library, 1);
    const auto unsaved = AddMap(*library, MakeSheet(PixelFormat::Grey, 99, 99));
    LookAt(*map);
    LookAt(*unsaved);
    icon->Image();
    library.reset();
    ExpectGone(*map);
    ExpectGone(*icon);
    ExpectGone(*unsaved);
    EXPECT_TRUE(Names(ScratchFolder()).empty());
}

TEST_F(LibraryReferences, ImagesHandedOutOutliveEverything) {
    auto library = NewLibrary();
    FillRichly(*library);
    const auto image = IconAt(*library, 1)->Image();
    std::shared_ptr<const AtlavexImage> view;
    MapAt(*library, 1)->RenderView(0, 0, 50, 40, view);
    library.reset();
    EXPECT_EQ(image->Width(), 32);
    EXPECT_EQ(view->Height(), 40);
}

TEST_F(LibraryReferences, AreLookedUpInFewComparisonsHoweverManyThereAre) {
    EXPECT_LT(ComparisonsForAll(10000), 20 * ComparisonsForAll(1000)) << "no growth with the square";
    EXPECT_LT(ComparisonsForAll(10000), 10000 * 20);
}
