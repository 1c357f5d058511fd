// What is got out of libraries that are damaged: all that is sound, and a word on all that is not.

#include "component/Bitmap.h"
#include "tests/component/LibraryFixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <set>

using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

constexpr std::int32_t TileSide = 64;

class SalvageTest : public LibraryTest {
protected:
    /// Maps of every format, two of them with overviews, and two icons.
    LibraryContent MakeLibrary(const std::string& file, const std::string& key = {}) {
        const auto library = NewLibrary();
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 330, 270, 1), "colours", TileSide, TileSide);
        AddMap(*library, MakeSheet(PixelFormat::Palette, 200, 190, 2), "palette", TileSide, TileSide);
        AddMap(*library, MakeSheet(PixelFormat::Grey, 150, 128, 3), "grey", TileSide, TileSide);
        AddMap(*library, MakeSheet(PixelFormat::Rgba, 129, 64, 4), "clear", TileSide, TileSide);
        AddIcon(*library, MakeSheet(PixelFormat::Rgba, 40, 30, 5), "first");
        AddIcon(*library, MakeSheet(PixelFormat::Rgb, 20, 20, 6), "second");
        for (std::int32_t i = 1; i <= library->MapCount(); ++i) {
            MapAt(*library, i)->SetMetadata("remark", "map " + std::to_string(i));
            MapAt(*library, i)->SetIdentifier("id " + std::to_string(i));
        }
        library->SaveToFile(file, key);
        return ContentOf(*library);
    }

    struct Result {
        Outcome outcome;
        SalvageReport report;
        LibraryContent content;
    };

    /// Salvages the file into a new one, which must be whole.
    Result SalvageFile(const std::string& file, const std::string& key = {}) {
        const std::string before = ReadWholeFile(file);
        Result result;
        const auto library = NewLibrary();
        result.outcome = OutcomeOf([&] { result.report = library->SalvageFromFile(file, key); });
        EXPECT_EQ(ReadWholeFile(file), before) << "it is only read";
        if (result.outcome.code != 0 || !library->KeyFitted())
            return result;
        const std::string fresh = PathOf("fresh.Atlavex");
        fs::remove(fresh);
        library->SaveToFile(fresh, key);
        const auto opened = Open(fresh, key);
        EXPECT_THAT(opened->Verify(), IsEmpty());
        result.content = ContentOf(*opened);
        return result;
    }

    static std::set<std::string> Objects(const SalvageReport& report) {
        std::set<std::string> objects;
        for (const Damage& damage : report.damages)
            objects.insert(damage.object);
        return objects;
    }

    /// Every pixel that is not named is what it was, and everything that there was is there or named.
    static void ExpectHonest(const LibraryContent& whole, const Result& result, const std::string& what) {
        const std::set<std::string> named = Objects(result.report);
        const bool recordsDoubted = named.contains("Library");
        for (const MapContent& map : result.content.maps) {
            const auto original = std::ranges::find(whole.maps, map.identifier, &MapContent::identifier);
            if (original == whole.maps.end()) {
                EXPECT_TRUE(recordsDoubted) << what;
                continue;
            }
            ExpectHonestPixels(*original, map, named, what);
            if (!recordsDoubted && !named.contains("Map '" + original->name + "'")) {
                EXPECT_EQ(map.metadata, original->metadata) << what;
            }
        }
        for (const MapContent& map : whole.maps)
            EXPECT_TRUE(recordsDoubted ||
                        std::ranges::find(result.content.maps, map.identifier, &MapContent::identifier) !=
                            result.content.maps.end())
                << what << ": map '" << map.name << "' was lost without a word";
        EXPECT_TRUE(recordsDoubted || result.content.icons.size() == whole.icons.size()) << what;
        for (std::size_t i = 0; i < result.content.icons.size() && !recordsDoubted; ++i)
            if (!named.contains("Icon '" + whole.icons[i].name + "'")) {
                EXPECT_EQ(result.content.icons[i], whole.icons[i]) << what;
            }
    }

    static void ExpectHonestPixels(const MapContent& original, const MapContent& map,
                                   const std::set<std::string>& named, const std::string& what) {
        ASSERT_EQ(map.sheet.pixels.size(), original.sheet.pixels.size()) << what;
        const std::int32_t bytes = BytesPerPixel(original.sheet.format);
        std::set<std::string> differing;
        for (std::int32_t y = 0; y < original.sheet.height; ++y)
            for (std::int32_t x = 0; x < original.sheet.width; ++x) {
                const auto at =
                    static_cast<std::ptrdiff_t>((std::int64_t{y} * original.sheet.width + x) * bytes);
                if (!std::equal(map.sheet.pixels.begin() + at, map.sheet.pixels.begin() + at + bytes,
                                original.sheet.pixels.begin() + at))
                    differing.insert("Map '" + map.name + "', level 0, row " + std::to_string(y / TileSide) +
                                     ", column " + std::to_string(x / TileSide));
            }
        for (const std::string& tile : differing)
            EXPECT_TRUE(named.contains(tile)) << what << ": " << tile << " differs without a word";
    }

    static std::int64_t NamedTiles(const SalvageReport& report) {
        return std::ranges::count_if(report.damages, [](const Damage& damage) {
            return damage.object.find(", level ") != std::string::npos;
        });
    }

    static std::int64_t TilesOf(const LibraryContent& content) {
        std::int64_t tiles = 0;
        for (const MapContent& map : content.maps)
            tiles +=
                PyramidLayout(map.sheet.width, map.sheet.height, map.tileWidth, map.tileHeight).Entries();
        return tiles;
    }

    /// The maps of both files at every size of their overviews.
    void ExpectSameViews(const std::string& left, const std::string& right) const {
        const auto first = Open(left), second = Open(right);
        for (std::int32_t i = 1; i <= first->MapCount(); ++i)
            for (const double zoom : {0.5, 0.25, 0.125}) {
                EXPECT_EQ(ViewOf(*MapAt(*first, i), zoom), ViewOf(*MapAt(*second, i), zoom))
                    << i << " " << zoom;
            }
    }
    static std::vector<std::uint32_t> ViewOf(AtlavexMap& map, double zoom) {
        map.SetZoom(zoom);
        std::shared_ptr<const AtlavexImage> image;
        EXPECT_TRUE(map.RenderView(0, 0, 200, 200, image));
        return image->Pixels()->pixels;
    }

    /// A copy of the file with some bytes turned over.
    std::string Rotten(const std::string& file, std::size_t at, std::size_t count) const {
        std::string bytes = ReadWholeFile(file);
        for (std::size_t i = at; i < std::min(at + count, bytes.size()); ++i)
            bytes[i] = static_cast<char>(bytes[i] ^ 0x5a);
        WriteWholeFile(PathOf("rotten.Atlavex"), bytes);
        return PathOf("rotten.Atlavex");
    }
    /// A copy of the file with a page of zeros, counted from 1.
    std::string Without(const std::string& file, std::size_t page) const {
        std::string bytes = ReadWholeFile(file);
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(8192 * (page - 1)), 8192, '\0');
        WriteWholeFile(PathOf("holed.Atlavex"), bytes);
        return PathOf("holed.Atlavex");
    }
    std::string Cut(const std::string& file, std::size_t length) const {
        WriteWholeFile(PathOf("cut.Atlavex"), ReadWholeFile(file).substr(0, length));
        return PathOf("cut.Atlavex");
    }
};

} // namespace

TEST_F(SalvageTest, OfASoundLibraryGivesAllOfIt) {
    for (const std::string key : {"", "key"}) {
        const LibraryContent whole = MakeLibrary(PathOf("lib.Atlavex"), key);
        const Result result = SalvageFile(PathOf("lib.Atlavex"), key);
        EXPECT_EQ(result.outcome.code, 0) << result.outcome.description;
        EXPECT_THAT(result.report.damages, IsEmpty());
        EXPECT_EQ(result.content, whole);
        EXPECT_EQ(result.report.maps, 4);
        EXPECT_EQ(result.report.icons, 2);
        EXPECT_EQ(result.report.tiles, TilesOf(whole));
        fs::remove(PathOf("lib.Atlavex"));
    }
}

TEST_F(SalvageTest, OfARottenFileGivesAllThatIsSoundAndNamesTheRest) {
    for (const std::string key : {"", "key"}) {
        const LibraryContent whole = MakeLibrary(PathOf("lib.Atlavex"), key);
        const std::size_t size = fs::file_size(PathOf("lib.Atlavex"));
        int got = 0, damaged = 0;
        for (std::size_t at = 0; at < size; at += 5 * 8192 - 509) {
            const Result result = SalvageFile(Rotten(PathOf("lib.Atlavex"), at, 40), key);
            const std::string what = "byte " + std::to_string(at);
            if (result.outcome.code != 0 || result.content.maps.empty())
                continue; // the header of a sealed file
            ++got;
            damaged += result.report.damages.empty() ? 0 : 1;
            ExpectHonest(whole, result, what);
            EXPECT_EQ(result.report.tiles + NamedTiles(result.report), TilesOf(result.content)) << what;
        }
        EXPECT_GT(got, 15);
        EXPECT_GT(damaged, got / 2) << "most bytes of the file mean something";
        fs::remove(PathOf("lib.Atlavex"));
    }
}

TEST_F(SalvageTest, OfAFileThatWasCutOffGivesWhatIsLeft) {
    const LibraryContent whole = MakeLibrary(PathOf("lib.Atlavex"));
    const std::size_t size = fs::file_size(PathOf("lib.Atlavex"));
    int got = 0;
    for (std::size_t length = 100; length < size; length += 12 * 8192 + 100) {
        const Result result = SalvageFile(Cut(PathOf("lib.Atlavex"), length));
        const std::string what = "cut at " + std::to_string(length);
        if (result.outcome.code != 0)
            continue; // nothing is left
        EXPECT_FALSE(result.report.damages.empty()) << what;
        ExpectHonest(whole, result, what);
        EXPECT_EQ(result.report.tiles + NamedTiles(result.report), TilesOf(result.content)) << what;
        ++got;
    }
    EXPECT_GT(got, 5);
    for (const std::size_t length : {std::size_t{0}, std::size_t{50}, std::size_t{8191}}) {
        const Result result = SalvageFile(Cut(PathOf("lib.Atlavex"), length));
        EXPECT_EQ(result.outcome.code, static_cast<int>(ErrorNumber::FileDamaged)) << length;
        EXPECT_THAT(result.outcome.description, HasSubstr("beyond salvage"));
    }
}

TEST_F(SalvageTest, OfAFileWithoutItsFirstPageGivesAllOfIt) {
    const LibraryContent whole = MakeLibrary(PathOf("lib.Atlavex"));
    const Result result = SalvageFile(Without(PathOf("lib.Atlavex"), 1));
    ASSERT_EQ(result.outcome.code, 0) << result.outcome.description;
    EXPECT_EQ(result.content, whole) << "the first page holds no map";
    EXPECT_THAT(result.report.damages, IsEmpty());
}

TEST_F(SalvageTest, OfAFileWithoutItsHeaderSaysThatNothingVouchesForTheMaps) {
    const LibraryContent whole = MakeLibrary(PathOf("lib.Atlavex"));
    const Result result = SalvageFile(Without(PathOf("lib.Atlavex"), 2));
    ASSERT_EQ(result.outcome.code, 0) << result.outcome.description;
    EXPECT_EQ(result.content, whole);
    ASSERT_EQ(result.report.damages.size(), 2U);
    EXPECT_THAT(result.report.damages[0].reason, HasSubstr("header"));
    EXPECT_THAT(result.report.damages[1].reason, HasSubstr("should be looked at"));
    // Sealed, nothing can be had: the header holds what opens the rest.
    fs::remove(PathOf("lib.Atlavex"));
    MakeLibrary(PathOf("lib.Atlavex"), "key");
    const Result sealed = SalvageFile(Without(PathOf("lib.Atlavex"), 2), "key");
    EXPECT_EQ(sealed.outcome.code, static_cast<int>(ErrorNumber::FileDamaged));
}

TEST_F(SalvageTest, BuildsADamagedOverviewAnewAndInventsNoPixels) {
    const LibraryContent whole = MakeLibrary(PathOf("lib.Atlavex"));
    const std::string bytes = ReadWholeFile(PathOf("lib.Atlavex"));
    int rebuilt = 0, emptied = 0;
    for (std::size_t at = 600; at < bytes.size(); at += 6 * 2048 + 700) {
        const Result result = SalvageFile(Rotten(PathOf("lib.Atlavex"), at, 8));
        if (result.report.damages.empty() || Objects(result.report).contains("Library"))
            continue;
        for (const Damage& damage : result.report.damages) {
            const bool isLevel0 = damage.object.find("level 0") != std::string::npos;
            if (damage.object.find("level ") == std::string::npos)
                continue;
            (isLevel0 ? emptied : rebuilt) += 1;
            EXPECT_THAT(damage.reason, HasSubstr(isLevel0 ? "empty" : "built anew")) << damage.object;
        }
        // An overview alone is damaged: what is drawn from it is what was drawn before.
        const bool isOverviewAlone = std::ranges::none_of(result.report.damages, [](const Damage& damage) {
            return damage.object.find("level 0") != std::string::npos ||
                   damage.object.find(", level ") == std::string::npos;
        });
        if (isOverviewAlone) {
            ExpectSameViews(PathOf("lib.Atlavex"), PathOf("fresh.Atlavex"));
        }
        EXPECT_EQ(result.content.maps.size(), whole.maps.size());
    }
    EXPECT_GT(rebuilt, 0);
    EXPECT_GT(emptied, 0);
}

TEST_F(SalvageTest, OfAWrongKeyTakesNothing) {
    MakeLibrary(PathOf("lib.Atlavex"), "key");
    const auto library = NewLibrary();
    library->SalvageFromFile(PathOf("lib.Atlavex"), "wrong");
    EXPECT_FALSE(library->KeyFitted());
    EXPECT_EQ(library->MapCount(), 0);
    EXPECT_ERROR(library->SalvageFromFile(PathOf("none.Atlavex"), {}), ErrorNumber::FileNotFound);
    WriteWholeFile(PathOf("notes.txt"), std::string(40000, 'x'));
    EXPECT_ERROR(library->SalvageFromFile(PathOf("notes.txt"), {}), ErrorNumber::FileDamaged);
}
