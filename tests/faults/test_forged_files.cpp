// Libraries whose digests are all right and whose content no writer would have written.

#include "base/ComponentError.h"
#include "component/tiles/TileCodec.h"
#include "tests/faults/FaultLab.h"
#include "tests/faults/Forger.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr std::int64_t Last = std::numeric_limits<std::int64_t>::max();

class ForgedFiles : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(folder_ / "scratch");
        MakeLibrary(file_, 2, 200);
        const std::vector<std::int64_t> numbers = MapNumbers(file_);
        first_ = numbers.at(0);
        second_ = numbers.at(1);
        library_ = CreateAtlavexLibrary(CheapOptions((folder_ / "scratch").string()));
    }

    void Load() { library_->LoadFromFile(file_.string(), ""); }
    std::vector<std::string> Findings() {
        Load();
        std::vector<std::string> reasons;
        for (const Damage& damage : library_->Verify())
            reasons.push_back(damage.reason);
        return reasons;
    }
    /// The reader that knows the page on the format alone refuses the file, too, and says why.
    void ExpectSecondReaderRefuses(const std::string& reason) const {
        const ProgramResult result = ReadBySecondReader(file_);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, HasSubstr(reason));
    }
    void ExpectRefused(const std::string& sentence, const std::string& secondReader) {
        ExpectSecondReaderRefuses(secondReader);
        try {
            Load();
            ADD_FAILURE() << "it was taken";
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::FileDamaged);
            EXPECT_THAT(error.Description(), HasSubstr(sentence));
        }
    }
    /// The second map names the first one's tiles.
    void ShareTiles() {
        Forger forger(file_);
        const MapRecord first = forger.Map(first_);
        MapRecord second = forger.Map(second_);
        forger.Remove("blob", forger.Page(second.pages.at(0)).at(0).number);
        second.pages.at(0) = forger.PutPage(second.pages.at(0).number, forger.Page(first.pages.at(0)));
        forger.PutMap(second_, second);
    }
    /// The second map has the first one's directory.
    void SharePage() {
        Forger forger(file_);
        MapRecord second = forger.Map(second_);
        forger.Remove("blob", forger.Page(second.pages.at(0)).at(0).number);
        forger.Remove("tile_index", second.pages.at(0).number);
        second.pages = forger.Map(first_).pages;
        forger.PutMap(second_, second);
    }
    /// An image of one colour.
    std::string Image(int side) const {
        const std::string image = (folder_ / "image.png").string();
        RunProgram({"/usr/bin/python3", "-c",
                    "import sys\nfrom PIL import Image\nside = int(sys.argv[2])\n"
                    "Image.new('RGB', (side, side), 'red').save(sys.argv[1])",
                    image, std::to_string(side)});
        return image;
    }
    /// A second icon names the first one's picture.
    void ShareIconPicture() {
        Load();
        library_->AddIconFromImageFile(Image(16), "Second");
        library_->SaveToFile(file_.string(), "");
        Forger forger(file_);
        const std::vector<std::int64_t> icons = forger.Numbers("icon");
        IconRecord second = forger.Icon(icons.at(1));
        forger.Remove("blob", second.picture.number);
        second.picture = forger.Icon(icons.at(0)).picture;
        forger.PutIcon(icons.at(1), second);
    }
    /// Under another name, under a key and in its own place; what comes of it is sound.
    void ExpectWrittenAnewWithAll() {
        Load();
        const std::string content = ContentOf(*library_);
        ASSERT_EQ(content.find("error"), std::string::npos) << content;
        for (const std::string key : {"", "key"}) {
            Load();
            library_->SaveToFile((folder_ / ("other" + key)).string(), key);
            EXPECT_EQ(ContentOf(*library_), content);
            EXPECT_EQ(ContentOfFile(folder_ / ("other" + key), key), content);
        }
        Load();
        library_->Compact();
        EXPECT_EQ(ContentOf(*library_), content);
        EXPECT_THAT(Findings(), IsEmpty());
        EXPECT_EQ(ContentOf(*library_), content);
    }
    /// The first map in a grid of Cassini-Soldner, in a file that says this version of itself.
    void PutMapOfAnotherMethod(std::uint32_t version) const {
        Forger forger(file_);
        forger.Header().version = version;
        forger.Run("PRAGMA user_version = " + std::to_string(version));
        MapRecord map = forger.Map(first_);
        map.georeference = {};
        map.georeference.grid = GridNumbers{16, 0, {52.4, 13.6, 1, 40000, 10000, 0, 0}};
        map.georeference.kind = ScalingKind::Linear;
        map.georeference.points = {{25000, 20000, 0, 0}, {25100, 20000, 100, 0}, {25000, 19900, 0, 100}};
        forger.PutMap(first_, map);
    }
    /// Another picture in the place of the first map's last tile.
    void PutTile(const std::vector<std::uint8_t>& png) {
        Forger forger(file_);
        MapRecord map = forger.Map(first_);
        std::vector<BlobRef> entries = forger.Page(map.pages.at(0));
        entries.back() = forger.PutBlob(entries.back().number, png);
        map.pages.at(0) = forger.PutPage(map.pages.at(0).number, entries);
        forger.PutMap(first_, map);
    }
    static std::vector<std::uint8_t> Picture(std::int32_t side, PixelFormat format) {
        const std::vector<std::uint8_t> pixels(static_cast<std::size_t>(side) *
                                               static_cast<std::size_t>(side) * 4);
        TileEncoder encoder;
        const auto png = encoder.Encode(
            {pixels.data(), std::ptrdiff_t{side} * BytesPerPixel(format), side, side, format, nullptr});
        return {png.begin(), png.end()};
    }

    TempFolder folder_;
    fs::path file_ = folder_ / "sheet.Atlavex";
    std::int64_t first_ = 0;
    std::int64_t second_ = 0;
    std::unique_ptr<AtlavexLibrary> library_;
};

} // namespace

TEST_F(ForgedFiles, WithNothingForgedAreSound) {
    { const Forger forger(file_); }
    EXPECT_THAT(Findings(), IsEmpty());
    EXPECT_EQ(ReadBySecondReader(file_).status, 0);
}

TEST_F(ForgedFiles, AtTheEndOfTheirGenerationsAreRefused) {
    const std::string bytes = ReadWholeFile(file_);
    { Forger(file_).Header().generation = Last; }
    ExpectRefused("generation", "a count is impossible");
    WriteWholeFile(file_, bytes);
    { Forger(file_).Header().generation = FileHeader::LargestCount + 1; }
    ExpectRefused("generation", "a count is impossible");
}

TEST_F(ForgedFiles, AtTheEndOfTheirNumbersAreRefused) {
    { Forger(file_).Header().nextNumber = Last; }
    ExpectRefused("next number", "a count is impossible");
}

TEST_F(ForgedFiles, WhoseNextNumberIsInUseAreRefused) {
    const std::int64_t next = [&] { return Forger(file_).Header().nextNumber; }();
    for (const std::int64_t number : {std::int64_t{1}, second_, next - 1}) {
        { Forger(file_).Header().nextNumber = number; }
        ExpectRefused("unused", "a number is out of range");
    }
    { Forger(file_).Header().nextNumber = next; }
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(ForgedFiles, WithNumbersBelowOneAreRefused) {
    { Forger(file_).Run("INSERT INTO blob(id, data) VALUES(-5, x'00')"); }
    ExpectRefused("below 1", "a number is out of range");
}

/// Saving it must not make a file that nothing opens any more.
TEST_F(ForgedFiles, OneStepBeforeTheEndOfTheirGenerationsAreNotSavedBeyondIt) {
    { Forger(file_).Header().generation = FileHeader::LargestCount; }
    const std::string bytes = ReadWholeFile(file_);
    Load();
    library_->GetMap(library_->MapIdAt(1))->SetMetadata("author", "Somebody");
    EXPECT_THROW(library_->SaveToFile(file_.string(), ""), ComponentError);
    EXPECT_THROW(library_->SaveToFile((folder_ / "other.Atlavex").string(), ""), ComponentError);
    EXPECT_EQ(ReadWholeFile(file_), bytes);
    Load();
}

TEST_F(ForgedFiles, OfAVersionThatTheirMapsDoNotNeedAreRefused) {
    {
        Forger forger(file_);
        forger.Header().version = 2;
        forger.Run("PRAGMA user_version = 2");
    }
    ExpectRefused("another format version than its maps need", "not the one that the maps need");
}

TEST_F(ForgedFiles, WithAMapThatNeedsALaterVersionAreRefused) {
    PutMapOfAnotherMethod(1);
    ExpectRefused("another format version than its maps need", "not the one that the maps need");
}

TEST_F(ForgedFiles, WhoseHeaderAndFirstPageHaveTwoVersionsAreRefused) {
    PutMapOfAnotherMethod(2);
    { Forger(file_).Header().version = 1; }
    ExpectRefused("another format version", "the header names another format version");
    {
        Forger forger(file_);
        forger.Header().version = 2;
        forger.Run("PRAGMA user_version = 1");
    }
    ExpectRefused("another format version", "the header names another format version");
}

/// A grid whose projection is not computed: all but that is as with any other map.
TEST_F(ForgedFiles, WithAMethodThatIsNotComputedAreKeptWhole) {
    PutMapOfAnotherMethod(2);
    Load();
    EXPECT_THAT(Findings(), IsEmpty());
    const auto map = library_->GetMap(library_->MapIdAt(1));
    const Georeference georeference = map->MapGeoreference();
    EXPECT_EQ(georeference.grid->method, 16);
    std::shared_ptr<const AtlavexImage> view;
    EXPECT_TRUE(map->RenderView(0, 0, 50, 50, view));
    EXPECT_NEAR(map->PixelToWorld({100, 0}).x, 25100, 1e-6);
    for (const auto& ask : {std::function<void()>([&] {
                                map->WorldToWgs84({25000, 20000});
                            }),
                            std::function<void()>([&] {
                                map->Wgs84ToWorld({13, 52});
                            })})
        try {
            ask();
            ADD_FAILURE() << "it was computed";
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::ProjectionNotComputed);
            EXPECT_THAT(error.Description(), HasSubstr("projection method 16, which"));
        }
    fs::create_directory(folder_ / "tiles");
    map->ExportTiles((folder_ / "tiles").string(), ".png");
    EXPECT_THAT(ReadWholeFile(folder_ / "tiles" / "tiles.json"), HasSubstr("\"boundsWgs84\": null"));
    for (const std::string key : {"", "key"}) {
        library_->SaveToFile((folder_ / ("other" + key)).string(), key);
        library_->LoadFromFile((folder_ / ("other" + key)).string(), key);
        EXPECT_EQ(library_->GetMap(library_->MapIdAt(1))->MapGeoreference(), georeference);
    }
    EXPECT_EQ(ReadBySecondReader(file_).status, 0);
}

TEST_F(ForgedFiles, WhoseMapsShareATileAreToldByVerify) {
    ShareTiles();
    EXPECT_THAT(Findings(), Contains(HasSubstr("belong to map")));
    ExpectSecondReaderRefuses("has two owners");
}

TEST_F(ForgedFiles, WhoseMapsShareATileKeepItWhenOneIsRemoved) {
    ShareTiles();
    Load();
    library_->RemoveMap(library_->MapIdAt(1));
    library_->SaveToFile(file_.string(), "");
    EXPECT_THAT(library_->NotesOfLastSave(), Contains(HasSubstr("keeps 1 of the pictures")));
    const std::string kept = ContentOf(*library_);
    EXPECT_EQ(kept.find("error"), std::string::npos) << kept;
    EXPECT_EQ(ContentOfFile(file_), kept);
}

TEST_F(ForgedFiles, WhoseMapsShareATileAreSaidToKeepItByTheCommand) {
    ShareTiles();
    const ProgramResult result =
        RunProgram({BUILD_DIR "/atlavex", "remove", file_.string(), "map", "Sheet 1"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err,
                HasSubstr("The file '" + file_.string() + "' keeps 1 of the pictures and directory pages"));
    EXPECT_EQ(result.out, "");
}

TEST_F(ForgedFiles, WhoseIconHasMorePixelsThanAnyAreRefused) {
    {
        Forger forger(file_);
        const std::int64_t number = forger.Numbers("icon").at(0);
        IconRecord icon = forger.Icon(number);
        icon.width = 4096;
        icon.height = 4097;
        forger.PutIcon(number, icon);
    }
    ExpectRefused("icon", "an icon's size is impossible");
}

TEST_F(ForgedFiles, WithAnOddFirstPageAreRefused) {
    const std::string bytes = ReadWholeFile(file_);
    constexpr std::pair<std::size_t, char> odd[] = {{18, 2},     {19, 2},     {20, 8},     {21, 63},
                                                    {44 + 3, 3}, {52 + 3, 1}, {56 + 3, 2}, {64 + 3, 1},
                                                    {72, 1},     {79, 1}};
    for (const auto& [at, value] : odd) {
        SCOPED_TRACE(at);
        std::string changed = bytes;
        changed.at(at) = value;
        WriteWholeFile(file_, changed);
        EXPECT_THROW(Load(), ComponentError);
        ExpectSecondReaderRefuses("the first page is odd");
    }
}

TEST_F(ForgedFiles, WhoseMapsShareAPageKeepItWhenOneIsRemoved) {
    SharePage();
    EXPECT_THAT(Findings(), Contains(HasSubstr("belong to map")));
    ExpectSecondReaderRefuses("has two owners");
    library_->RemoveMap(library_->MapIdAt(1));
    library_->SaveToFile(file_.string(), "");
    EXPECT_EQ(ContentOfFile(file_).find("error"), std::string::npos);
}

TEST_F(ForgedFiles, WhoseIconsShareAPictureKeepItWhenOneIsRemoved) {
    ShareIconPicture();
    Load();
    library_->RemoveIcon(library_->IconIdAt(1));
    library_->SaveToFile(file_.string(), "");
    EXPECT_THAT(library_->NotesOfLastSave(), Contains(HasSubstr("keeps 1 of the pictures")));
    EXPECT_THAT(ContentOfFile(file_), Not(HasSubstr("error")));
}

TEST_F(ForgedFiles, WhoseIconHasAPictureOfAnUnusedNumberAreRefused) {
    {
        Forger forger(file_);
        const std::int64_t number = forger.Numbers("icon").at(0);
        IconRecord icon = forger.Icon(number);
        icon.picture.number = forger.Header().nextNumber + 7;
        forger.PutIcon(number, icon);
    }
    ExpectRefused("unused", "a number is out of range");
}

TEST_F(ForgedFiles, WhoseMapsShareATileAreWrittenAnewWithBoth) {
    ShareTiles();
    ExpectWrittenAnewWithAll();
}

TEST_F(ForgedFiles, WhoseMapsShareAPageAreWrittenAnewWithBoth) {
    SharePage();
    ExpectWrittenAnewWithAll();
}

TEST_F(ForgedFiles, WhoseIconsShareAPictureAreWrittenAnewWithBoth) {
    ShareIconPicture();
    EXPECT_THAT(Findings(), Contains(HasSubstr("belong to icon")));
    ExpectSecondReaderRefuses("has two owners");
    ExpectWrittenAnewWithAll();
}

TEST_F(ForgedFiles, WhoseDirectoryNamesAPageTwiceAreWrittenAnew) {
    Load();
    library_->AddMapFromImageFile(Image(64 * 40), "Large", 64, 64); // three pages, two of them full
    library_->SaveToFile(file_.string(), "");
    {
        Forger forger(file_);
        const std::int64_t number = forger.Numbers("map").back();
        MapRecord map = forger.Map(number);
        forger.Remove("tile_index", map.pages.at(1).number);
        map.pages.at(1) = map.pages.at(0);
        forger.PutMap(number, map);
    }
    ExpectWrittenAnewWithAll();
}

TEST_F(ForgedFiles, WhoseTilesAreNoPicturesAreToldByVerify) {
    PutTile({'j', 'u', 'n', 'k'});
    EXPECT_THAT(Findings(), Contains(HasSubstr("level 0")));
    ExpectSecondReaderRefuses("a tile is no PNG");
}

TEST_F(ForgedFiles, WhoseTilesAreNoPicturesAreNamedWhenTheirPixelsAreRead) {
    PutTile({'j', 'u', 'n', 'k'});
    Load();
    try {
        library_->GetMap(library_->MapIdAt(1))->ReadPixels([](std::span<const std::uint8_t>, std::int32_t) {
        });
        ADD_FAILURE() << "there are no pixels";
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::FileDamaged);
        EXPECT_THAT(error.Description(), HasSubstr(file_.string()));
        EXPECT_THAT(error.Description(), HasSubstr("Map 'Sheet 1', level 0, row 0, column 0"));
    }
}

TEST_F(ForgedFiles, AreToldInTheSameOrderByAnyNumberOfThreads) {
    fs::remove(file_);
    MakeLibrary(file_, 1, 3000);
    Forger(file_).Run("UPDATE blob SET data = CAST(x'00' || data AS BLOB) WHERE id % 3 = 0");
    const auto findingsOf = [this](int threads) {
        LibraryOptions options = CheapOptions((folder_ / "scratch").string());
        options.threads = threads;
        const auto library = CreateAtlavexLibrary(options);
        library->LoadFromFile(file_.string(), "");
        std::vector<std::string> findings;
        for (const Damage& damage : library->Verify())
            findings.push_back(damage.object + ": " + damage.reason);
        return findings;
    };
    const std::vector<std::string> findings = findingsOf(1);
    EXPECT_GT(findings.size(), 50U);
    EXPECT_THAT(findings, Contains(HasSubstr("level 1, row 0, column")));
    EXPECT_EQ(findingsOf(4), findings);
    EXPECT_EQ(findingsOf(0), findings);
}

TEST_F(ForgedFiles, WhoseTilesHaveAnotherSizeAreToldByVerify) {
    PutTile(Picture(64, PixelFormat::Rgba));
    EXPECT_THAT(Findings(), Contains(HasSubstr("another size")));
    ExpectSecondReaderRefuses("another size");
}

TEST_F(ForgedFiles, WhoseTilesHaveOtherPixelsAreToldByVerify) {
    PutTile(Picture(256, PixelFormat::Grey));
    EXPECT_THAT(Findings(), Contains(HasSubstr("other pixels")));
    ExpectSecondReaderRefuses("another pixel format");
}

TEST_F(ForgedFiles, WithMetadataOfNothingAreToldByVerify) {
    {
        Forger forger(file_);
        forger.Run("INSERT INTO metadata(id, record) VALUES(" + std::to_string(forger.Header().nextNumber++) +
                   ", x'0100000000')");
    }
    EXPECT_THAT(Findings(), Contains(HasSubstr("metadata")));
    ExpectSecondReaderRefuses("metadata belong to nothing");
}

TEST_F(ForgedFiles, WithALongerValueThanAnyAreRefusedByTheSecondReader) {
    const std::string longest = std::to_string(LongestValue), longer = std::to_string(LongestValue + 1);
    {
        Forger forger(file_);
        const std::string number = std::to_string(forger.Header().nextNumber++);
        forger.Run("INSERT INTO blob(id, data) VALUES(" + number + ", zeroblob(" + longest + "))");
    }
    ExpectSecondReaderRefuses("belongs to nothing");
    Forger(file_).Run("UPDATE blob SET data = zeroblob(" + longer + ") WHERE length(data) = " + longest);
    ExpectSecondReaderRefuses("a value is too long");
}

TEST_F(ForgedFiles, WhoseTilesHaveNumbersThatAreUnusedAreToldByVerify) {
    {
        Forger forger(file_);
        MapRecord map = forger.Map(first_);
        std::vector<BlobRef> entries = forger.Page(map.pages.at(0));
        entries.back().number = forger.Header().nextNumber + 7;
        map.pages.at(0) = forger.PutPage(map.pages.at(0).number, entries);
        forger.PutMap(first_, map);
    }
    EXPECT_THAT(Findings(), Contains(HasSubstr("calls unused")));
    ExpectSecondReaderRefuses("a number is out of range");
}
