// Which version of the format a file has, how it comes to another one, and that all that only the later
// version holds is kept whatever is done with the file.

#include "tests/component/LibraryFixture.h"
#include "tests/support/RunProgram.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using testing::HasSubstr;
using testing::Not;

/// `user_version` of the first page; the engine refuses a header of another one.
int VersionOf(const std::string& file) {
    return static_cast<unsigned char>(ReadWholeFile(file).at(63));
}

class FormatVersions : public LibraryTest {
protected:
    /// The stored bytes of all tiles, pages and pictures.
    std::string StoredBlobs(const std::string& file) const {
        const ProgramResult result =
            RunProgram({"/usr/bin/python3", "-c",
                        "import sqlite3, sys, hashlib\nd = sqlite3.connect(sys.argv[1])\n"
                        "for t in ('tile_index', 'blob'):\n"
                        "    for i, b in d.execute(f'SELECT id, data FROM {t} ORDER BY id'):\n"
                        "        print(t, i, hashlib.sha256(b).hexdigest())",
                        file});
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    }
    static nlohmann::json Exported(const std::string& folder) {
        return nlohmann::json::parse(ReadWholeFile(folder + "/tiles.json"));
    }
    std::string Export(AtlavexMap& map, const std::string& name) const {
        std::filesystem::create_directory(PathOf(name));
        map.ExportTiles(PathOf(name), ".png");
        return PathOf(name);
    }
};

} // namespace

TEST_F(FormatVersions, AreTheFirstForAllThatItHolds) {
    for (const std::string key : {"", "key"}) {
        SaveRichLibrary(PathOf("lib" + key), key);
        EXPECT_EQ(VersionOf(PathOf("lib" + key)), 1);
    }
}

TEST_F(FormatVersions, ChangeInPlaceBothWaysAndSealNothingAnew) {
    for (const std::string key : {"", "key"}) {
        const std::string file = PathOf("lib" + key);
        SaveRichLibrary(file, key);
        const std::string blobs = StoredBlobs(file);
        const auto library = Open(file, key);
        GiveParticulars(*MapAt(*library, 1));
        library->SaveToFile(file, key);
        EXPECT_EQ(VersionOf(file), 2);
        EXPECT_EQ(StoredBlobs(file), blobs);
        ExpectHolds(file, key, ContentOf(*library));
        const auto other = NewLibrary();
        other->LoadFromFile(file, key.empty() ? key : "wrong");
        EXPECT_EQ(other->KeyFitted(), key.empty());
        MapAt(*library, 1)->SetScalingThreePoints({1, 2, 0, 0}, {3, 2, 100, 0}, {1, 5, 0, 100});
        library->SaveToFile(file, key);
        EXPECT_EQ(VersionOf(file), 1);
        EXPECT_EQ(StoredBlobs(file), blobs);
        ExpectHolds(file, key, ContentOf(*library));
    }
}

TEST_F(FormatVersions, GoBackWhenTheLastMapThatNeedsTheSecondIsRemoved) {
    SaveRichLibrary(PathOf("lib"));
    const auto library = Open(PathOf("lib"));
    GiveParticulars(*MapAt(*library, 1));
    GiveUnknownShift(*MapAt(*library, 2));
    library->SaveToFile(PathOf("lib"), {});
    library->RemoveMap(library->MapIdAt(1));
    library->SaveToFile(PathOf("lib"), {});
    EXPECT_EQ(VersionOf(PathOf("lib")), 2);
    library->RemoveMap(library->MapIdAt(1));
    library->SaveToFile(PathOf("lib"), {});
    EXPECT_EQ(VersionOf(PathOf("lib")), 1);
    ExpectHolds(PathOf("lib"), {}, ContentOf(*library));
}

TEST_F(FormatVersions, KeepAllUnderAnotherNameKeyAndInAnotherLibrary) {
    SaveRichLibrary(PathOf("lib"));
    auto library = Open(PathOf("lib"));
    GiveParticulars(*MapAt(*library, 1));
    GiveUnknownShift(*MapAt(*library, 2));
    const LibraryContent content = ContentOf(*library);
    for (const std::string key : {"", "first", "second"}) {
        library->SaveToFile(PathOf("as" + key), key);
        EXPECT_EQ(VersionOf(PathOf("as" + key)), 2);
        ExpectHolds(PathOf("as" + key), key, content);
        library->SaveToFile(PathOf("as"), key);
        ExpectHolds(PathOf("as"), key, content);
        library->Compact();
        ExpectHolds(PathOf("as"), key, content);
    }
    const auto merged = NewLibrary();
    merged->MergeFromFile(PathOf("assecond"), "second");
    EXPECT_EQ(ContentOf(*merged), content);
    merged->SaveToFile(PathOf("merged"), {});
    EXPECT_EQ(VersionOf(PathOf("merged")), 2);
    ExpectHolds(PathOf("merged"), {}, content);
}

TEST_F(FormatVersions, StayAsTheyAreWhenASaveFails) {
    SaveRichLibrary(PathOf("lib"));
    const std::string bytes = ReadWholeFile(PathOf("lib"));
    const auto library = Open(PathOf("lib"));
    GiveParticulars(*MapAt(*library, 1));
    library->OnProgress = [&](float) { library->CancelOperation(); };
    EXPECT_ERROR(library->SaveToFile(PathOf("lib"), {}), ErrorNumber::Cancelled);
    EXPECT_EQ(ReadWholeFile(PathOf("lib")), bytes);
}

TEST_F(FormatVersions, ArePendingLikeTheSystemAndDroppedByAFailure) {
    const auto library = NewLibrary();
    const auto map = AddMap(*library, MakeSheet(PixelFormat::Grey, 100, 100));
    const std::vector<MeasuredPoint> points{{1, 2, 3.5, 4, "a"}};
    map->SetEnteredPoints(points);
    map->SetCheckSets({{"set", points}});
    map->SetSystemIdentity({"EPSG:4326", "", "", "", 0, false});
    EXPECT_EQ(map->MapGeoreference(), Georeference{});
    map->SetScalingThreePoints({1, 2, 0, 0}, {3, 2, 100, 0}, {1, 5, 0, 100});
    EXPECT_EQ(map->MapGeoreference().entered, points);
    EXPECT_EQ(map->MapGeoreference().checks, (std::vector<CheckSet>{{"set", points}}));
    EXPECT_EQ(map->MapGeoreference().system.code, "EPSG:4326");
    // The next scaling has nothing of it: it is not the system's any more.
    map->SetEnteredPoints(points);
    EXPECT_ERROR(map->SetScalingThreePoints({1, 2, 0, 0}, {1, 2, 0, 0}, {1, 5, 0, 100}),
                 ErrorNumber::PointsOnALine);
    map->SetScalingThreePoints({1, 2, 0, 0}, {3, 2, 100, 0}, {1, 5, 0, 100});
    EXPECT_TRUE(map->MapGeoreference().entered.empty());
    EXPECT_EQ(map->MapGeoreference().system, SystemIdentity());
}

TEST_F(FormatVersions, RefuseWhatNoFileHolds) {
    const auto library = NewLibrary();
    const auto map = AddMap(*library, MakeSheet(PixelFormat::Grey, 100, 100));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_ERROR(map->SetEnteredPoints({{1, nan, 0, 0, ""}}), ErrorNumber::ValueNotFinite);
    EXPECT_ERROR(map->SetCheckSets({{"", {{1, 2, 0, nan, ""}}}}), ErrorNumber::ValueNotFinite);
    EXPECT_ERROR(map->SetEnteredPoints(std::vector<MeasuredPoint>(MostMeasuredPoints + 1)),
                 ErrorNumber::InvalidArgument);
    EXPECT_ERROR(map->SetCheckSets(std::vector<CheckSet>(MostCheckSets + 1)), ErrorNumber::InvalidArgument);
    EXPECT_ERROR(map->SetSystemIdentity({"", "", "", "", -1, false}), ErrorNumber::InvalidArgument);
    EXPECT_ERROR(map->SetSystemIdentity({"", "", "", "named", 0, true}), ErrorNumber::InvalidArgument);
    map->SetSystemIdentity({"", "", "", "", 0, true});
    EXPECT_ERROR(map->SetScalingThreePoints({1, 2, 0, 0}, {3, 2, 100, 0}, {1, 5, 0, 100}),
                 ErrorNumber::InvalidArgument);
}

TEST_F(FormatVersions, ClaimNothingInWgs84WhereTheShiftIsUnknown) {
    const auto library = NewLibrary();
    const auto map = AddMap(*library, MakeSheet(PixelFormat::Grey, 129, 65));
    GiveUnknownShift(*map);
    EXPECT_NEAR(map->PixelToWorld({128, 0}).x, 11, 1e-9);
    EXPECT_ERROR(map->WorldToWgs84({10, 50}), ErrorNumber::ShiftUnknown);
    EXPECT_ERROR(map->Wgs84ToWorld({10, 50}), ErrorNumber::ShiftUnknown);
    const std::string folder = Export(*map, "tiles");
    const nlohmann::json tiles = Exported(folder);
    EXPECT_TRUE(tiles["boundsWgs84"].is_null());
    EXPECT_TRUE(tiles["epsg"].is_null());
    EXPECT_EQ(tiles["crsName"], "Bessel, local");
    EXPECT_TRUE(tiles["georeference"]["system"]["shiftUnknown"].get<bool>());
    EXPECT_TRUE(tiles["georeference"]["datum"]["DeltaX"].is_null());
    for (const std::string& text : {tiles["crs"].get<std::string>(), ReadWholeFile(folder + "/map.vrt")}) {
        EXPECT_THAT(text, HasSubstr("6377397.155"));
        EXPECT_THAT(text, Not(HasSubstr("WGS")));
        EXPECT_THAT(text, Not(HasSubstr("BOUNDCRS")));
    }
}

/// The numbers of ETRS89 and three others: only that they are meant makes them theirs.
TEST_F(FormatVersions, NameNoDatumWhereOnlyItsEllipsoidIsKnown) {
    const auto library = NewLibrary();
    const auto map = AddMap(*library, MakeSheet(PixelFormat::Grey, 129, 65));
    for (const bool unknown : {false, true}) {
        map->SetMapDatum(MakeDatum(2).AsNumbers());
        map->SetSystemIdentity({"", "", "", "", 0, unknown});
        map->SetScalingThreePoints({10, 50, 0, 0}, {11, 50.1, 128, 0}, {10, 49, 0, 64});
        const nlohmann::json tiles = Exported(Export(*map, unknown ? "unknown" : "known"));
        EXPECT_EQ(tiles["georeference"]["datum"]["name"].get<std::string>().empty(), unknown);
    }
}

TEST_F(FormatVersions, ExportTheIdentityAndAllPoints) {
    const auto library = NewLibrary();
    const auto map = AddMap(*library, MakeSheet(PixelFormat::Grey, 300, 200));
    GiveParticulars(*map);
    const nlohmann::json georeference = Exported(Export(*map, "tiles"))["georeference"];
    EXPECT_EQ(georeference["system"]["code"], "EPSG:23032");
    EXPECT_EQ(georeference["system"]["shiftAccuracy"], 2.5);
    EXPECT_EQ(georeference["enteredPoints"].size(), 4U);
    EXPECT_EQ(georeference["enteredPoints"][1]["pixelX"], -3.125);
    EXPECT_EQ(georeference["checkSets"][0]["points"][0]["label"], "mill");
}
