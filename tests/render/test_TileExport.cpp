#include "base/ComponentError.h"
#include "component/render/TileExport.h"
#include "component/scaling/Scaling.h"
#include "coordinates/Projection.h"
#include "tests/render/DrawnMap.h"
#include "tests/support/RunProgram.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cmath>
#include <csignal>
#include <sstream>

using testing::HasSubstr;

namespace {

Georeference LinearGeoreference() {
    const QuorvantGrid grid = MakeGrid(1, 32);
    Georeference georeference;
    georeference.datum = grid.Datum();
    georeference.grid = grid.AsNumbers();
    georeference.gridIdentifier = 1;
    georeference.zone = "32";
    georeference.kind = ScalingKind::Linear;
    georeference.points = {{600000.25, 6100000, 0, 0}, {600400, 6100030, 200, 0}, {599980, 6099700, 0, 150}};
    return georeference;
}

Georeference PolarGeoreference() {
    Georeference georeference;
    georeference.kind = ScalingKind::Polar;
    georeference.points = {{9, 56, 20, 10}, {9, 55, 10, 140}, {11, 56, 180, 12}, {11, 55, 195, 141}};
    return georeference;
}

ExportedMap Described(const DrawnMap& map, const Georeference& georeference = {}) {
    return {"{0B1C9A52-1111-4222-8333-944455556666}", "Sheet 1", map.Layout(), georeference};
}

void Export(const ExportedMap& described, DrawnMap& map, const std::filesystem::path& folder,
            int threads = 0) {
    Progress progress;
    ExportTiles(described, map, folder, progress, threads);
    EXPECT_EQ(progress.Done(), map.Layout().Entries());
}

nlohmann::json Description(const std::filesystem::path& folder) {
    return nlohmann::json::parse(ReadWholeFile(folder / "tiles.json"));
}

/// The picture's bytes as red, green, blue and, from four bands, alpha; one band: grey.
std::string BytesOf(const Bitmap& picture, int bands) {
    std::string bytes;
    for (const std::uint32_t pixel : picture.pixels)
        for (int band = 0; band < bands; ++band)
            bytes.push_back(static_cast<char>(band == 3 ? pixel >> 24 : pixel >> (16 - 8 * band)));
    return bytes;
}

Bitmap GreyOf(Bitmap picture) {
    for (std::uint32_t& pixel : picture.pixels)
        pixel = 0xFF000000 | (pixel & 0xFF) * 0x010101;
    return picture;
}

Bitmap WithHoles(Bitmap picture) {
    for (std::size_t i = 0; i < picture.pixels.size(); i += 3)
        picture.pixels[i] = 0;
    return picture;
}

struct Kind {
    const char* name;
    PixelFormat format;
    Bitmap picture;
    int bands; ///< of the mosaic
};

std::vector<Kind> Kinds() {
    return {{"rgb", PixelFormat::Rgb, SpeckledPicture(200, 150), 3},
            {"palette", PixelFormat::Palette, SpeckledPicture(200, 150), 3},
            {"palette with a clear colour", PixelFormat::Palette, WithHoles(SpeckledPicture(200, 150)), 4},
            {"rgba", PixelFormat::Rgba, WithHoles(SpeckledPicture(200, 150)), 4},
            {"grey", PixelFormat::Grey, GreyOf(SpeckledPicture(200, 150)), 1},
            {"whole tiles only", PixelFormat::Rgb, SpeckledPicture(128, 128), 3},
            {"smaller than a tile", PixelFormat::Rgb, SpeckledPicture(40, 30), 4}};
}

/// Lines of a program's output, by their first word.
std::vector<std::istringstream> LinesOf(const std::string& text, const std::string& word) {
    std::vector<std::istringstream> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        if (line.starts_with(word + " "))
            lines.emplace_back(line.substr(word.size() + 1));
    return lines;
}

ProgramResult ReadMosaic(const TempFolder& folder) {
    ProgramResult result = RunProgram({"/usr/bin/python3", SOURCE_DIR "/tests/render/read_mosaic.py",
                                       (folder / "map.vrt").string(), (folder / "pixels").string()});
    EXPECT_EQ(result.status, 0) << result.err;
    return result;
}

ErrorNumber FaultOf(const ExportedMap& described, TileSource& source, const std::filesystem::path& folder,
                    std::string* sentence = nullptr) {
    Progress progress;
    try {
        ExportTiles(described, source, folder, progress, 2);
    } catch (const ComponentError& error) {
        if (sentence)
            *sentence = error.Description();
        return error.Number();
    }
    return ErrorNumber::Failed;
}

} // namespace

TEST(TileExport, WritesTilesThatMakeUpEveryLevelAgain) {
    for (const Kind& kind : Kinds()) {
        const TempFolder folder;
        DrawnMap map(kind.picture, 64, 64, kind.format);
        Export(Described(map), map, folder.Path());
        for (int level = 0; level < map.Layout().Levels(); ++level) {
            const auto z = std::to_string(map.Layout().Levels() - 1 - level);
            const ProgramResult result =
                RunProgram({"/usr/bin/python3", SOURCE_DIR "/tests/render/assemble_tiles.py",
                            folder.Path().string(), z, (folder / "pixels").string()});
            ASSERT_EQ(result.status, 0) << kind.name << result.err;
            EXPECT_TRUE(ReadWholeFile(folder / "pixels") == BytesOf(map.Level(level), 4))
                << kind.name << " " << z;
        }
    }
}

TEST(TileExport, CopiesTheStoredBytes) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(200, 150), 64, 80, PixelFormat::Palette);
    Export(Described(map), map, folder.Path(), 3);
    const auto stored = map.ReadTile(0, 1, 2);
    EXPECT_EQ(ReadWholeFile(folder / "2/2/1.png"), std::string(stored.begin(), stored.end()));
}

TEST(TileExport, WritesAMosaicThatOpensElsewhereWithTheSamePixels) {
    for (const Kind& kind : Kinds()) {
        const TempFolder folder;
        DrawnMap map(kind.picture, 64, 64, kind.format);
        Export(Described(map), map, folder.Path());
        const ProgramResult result = ReadMosaic(folder);
        const auto size =
            std::to_string(kind.picture.width) + " " + std::to_string(kind.picture.height) + " ";
        EXPECT_THAT(result.out, HasSubstr(size + std::to_string(kind.bands))) << kind.name;
        EXPECT_EQ(LinesOf(result.out, "overview").size(),
                  static_cast<std::size_t>(map.Layout().Levels() - 1));
        EXPECT_TRUE(ReadWholeFile(folder / "pixels") == BytesOf(kind.picture, kind.bands)) << kind.name;
    }
}

TEST(TileExport, PutsALinearMapWhereItsScalingDoes) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(200, 150), 64, 64, PixelFormat::Rgb);
    const Georeference georeference = LinearGeoreference();
    Export(Described(map, georeference), map, folder.Path());
    const ProgramResult result = ReadMosaic(folder);
    auto lines = LinesOf(result.out, "transform");
    ASSERT_EQ(lines.size(), 1U) << result.out;
    std::array<double, 6> t{};
    for (double& number : t)
        ASSERT_TRUE(lines[0] >> number) << result.out;
    const auto scaling = MakeScaling(georeference);
    for (const PixelPosition& at : {PixelPosition{0, 0}, PixelPosition{199, 0}, PixelPosition{77, 149}}) {
        const WorldPosition world = scaling->PixelToWorld(at);
        EXPECT_NEAR(t[0] + (at.x + 0.5) * t[1] + (at.y + 0.5) * t[2], world.x, 1e-6);
        EXPECT_NEAR(t[3] + (at.x + 0.5) * t[4] + (at.y + 0.5) * t[5], world.y, 1e-6);
    }
}

/// The middle of the map in WGS84, as the mosaic's reference system has it and as it is.
void ExpectSystemLeadsToWgs84(const Georeference& georeference, const std::string& name) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(200, 150), 64, 64, PixelFormat::Rgb);
    Export(Described(map, georeference), map, folder.Path());
    EXPECT_THAT(ReadMosaic(folder).out, HasSubstr("system " + name + "\n"));
    auto lines = LinesOf(ReadMosaic(folder).out, "middle");
    ASSERT_EQ(lines.size(), 1U);
    LonLat found;
    ASSERT_TRUE(lines[0] >> found.longitude >> found.latitude);
    const WorldPosition world = MakeScaling(georeference)->PixelToWorld({99.5, 74.5});
    const LonLat own =
        georeference.grid
            ? GridProjection(*georeference.grid, *georeference.datum).Inverse({world.x, world.y})
            : LonLat{world.x, world.y};
    const LonLat wgs84 = DatumShift(*georeference.datum).ToWgs84(own);
    EXPECT_NEAR(found.longitude, wgs84.longitude, 1e-6);
    EXPECT_NEAR(found.latitude, wgs84.latitude, 1e-6);
    const auto bounds = Description(folder.Path())["boundsWgs84"];
    EXPECT_LT(bounds["west"], wgs84.longitude);
    EXPECT_GT(bounds["east"], wgs84.longitude);
    EXPECT_LT(bounds["south"], wgs84.latitude);
    EXPECT_GT(bounds["north"], wgs84.latitude);
}

TEST(TileExport, NamesAReferenceSystemThatLeadsToTheSameWgs84) {
    Georeference georeference = LinearGeoreference();
    ExpectSystemLeadsToWgs84(georeference, "WGS 84 / UTM zone 32N");
    // Systems whose first axis is the northing or the latitude.
    const QuorvantGrid strip = MakeGrid(29, 3);
    georeference.datum = strip.Datum();
    georeference.grid = strip.AsNumbers();
    georeference.gridIdentifier = 29;
    georeference.points = {{3500000, 5600000, 0, 0}, {3500400, 5600000, 200, 0}, {3500000, 5599700, 0, 150}};
    ExpectSystemLeadsToWgs84(georeference, "DHDN / 3-degree Gauss-Kruger zone 3");
    georeference.datum = MakeDatum(17);
    georeference.grid.reset();
    georeference.gridIdentifier = 0;
    georeference.points = {{9, 56, 0, 0}, {10, 56, 200, 0}, {9, 55, 0, 150}};
    ExpectSystemLeadsToWgs84(georeference, "ED50");
}

TEST(TileExport, GivesAPolarMapControlPoints) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(200, 150), 64, 64, PixelFormat::Rgb);
    Export(Described(map, PolarGeoreference()), map, folder.Path());
    const ProgramResult result = ReadMosaic(folder);
    auto lines = LinesOf(result.out, "point");
    EXPECT_EQ(lines.size(), 81U) << result.out;
    const auto scaling = MakeScaling(PolarGeoreference());
    for (auto& line : lines) {
        double pixel = 0, row = 0, x = 0, y = 0;
        ASSERT_TRUE(line >> pixel >> row >> x >> y);
        const WorldPosition world = scaling->PixelToWorld({pixel - 0.5, row - 0.5});
        EXPECT_NEAR(x, world.x, 1e-12);
        EXPECT_NEAR(y, world.y, 1e-12);
    }
}

TEST(TileExport, DescribesTheMapInTilesJson) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(200, 150), 64, 80, PixelFormat::Rgb);
    const Georeference georeference = LinearGeoreference();
    Export(Described(map, georeference), map, folder.Path());
    const auto json = Description(folder.Path());
    EXPECT_EQ(json["complete"], true);
    EXPECT_EQ(json["formatVersion"], 1);
    EXPECT_EQ(json["identifier"], "{0B1C9A52-1111-4222-8333-944455556666}");
    EXPECT_EQ(json["width"], 200);
    EXPECT_EQ(json["tileHeight"], 80);
    EXPECT_EQ(json["levels"].size(), 3U);
    EXPECT_EQ(json["levels"][2]["columns"], 4);
    EXPECT_EQ(json["georeference"]["points"][0]["x"], 600000.25);
    EXPECT_EQ(json["georeference"]["points"][2]["pixelY"], 150);
    EXPECT_EQ(json["georeference"]["datum"]["SemiMajorAxis"], georeference.datum->SemiMajorAxis());
    EXPECT_EQ(json["georeference"]["grid"]["falseEasting"], 500000);
    EXPECT_EQ(json["georeference"]["datum"]["name"], "WGS84");
    EXPECT_EQ(json["georeference"]["grid"]["name"], "UTM North (wgs84)");
    EXPECT_EQ(json["georeference"]["grid"]["identifier"], 1);
    EXPECT_EQ(json["georeference"]["grid"]["zoneText"], "32");
    EXPECT_THAT(json["crs"].get<std::string>(), HasSubstr("PROJCRS[\"WGS 84 / UTM zone 32N\""));
    EXPECT_THAT(json["crs"].get<std::string>(), HasSubstr("ID[\"EPSG\",32632]"));
    EXPECT_EQ(json["crsName"], "WGS 84 / UTM zone 32N");
    EXPECT_EQ(json["epsg"], 32632);
    EXPECT_EQ(RunProgram({"/usr/bin/python3", "-m", "json.tool", (folder / "tiles.json").string()}).status,
              0);
}

TEST(TileExport, DescribesAMapWithoutAScaling) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(70, 70), 64, 64, PixelFormat::Rgb);
    Export(Described(map), map, folder.Path());
    const auto json = Description(folder.Path());
    EXPECT_TRUE(json["georeference"].is_null());
    EXPECT_TRUE(json["crs"].is_null());
    EXPECT_TRUE(json["crsName"].is_null());
    EXPECT_TRUE(json["epsg"].is_null());
    EXPECT_TRUE(json["boundsWgs84"].is_null());
}

TEST(TileExport, KeepsBoundsTogetherAcrossThe180thMeridian) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(200, 100), 64, 64, PixelFormat::Rgb);
    Georeference georeference;
    georeference.kind = ScalingKind::Linear;
    georeference.points = {{179, -17, 0, 0}, {181, -17, 200, 0}, {179, -18, 0, 100}};
    Export(Described(map, georeference), map, folder.Path());
    const auto bounds = Description(folder.Path())["boundsWgs84"];
    EXPECT_NEAR(bounds["east"].get<double>() - bounds["west"].get<double>(), 2, 1e-9);
    EXPECT_NEAR(std::remainder(bounds["west"].get<double>() - 178.995, 360), 0, 1e-9);
    EXPECT_NEAR(bounds["south"], -17.995, 1e-9);
}

TEST(TileExport, RefusesAFolderThatHoldsAnotherMap) {
    DrawnMap map(SpeckledPicture(70, 70), 64, 64, PixelFormat::Rgb);
    for (const char* other : {R"({"identifier":"another"})", R"({"identifier":""})", "[]", "{", "", "\xff"}) {
        const TempFolder folder;
        WriteWholeFile(folder / "tiles.json", other);
        std::string sentence;
        EXPECT_EQ(FaultOf(Described(map), map, folder.Path(), &sentence), ErrorNumber::InvalidArgument)
            << other;
        EXPECT_THAT(sentence, HasSubstr(folder.Path().string()));
        EXPECT_EQ(ReadWholeFile(folder / "tiles.json"), other);
        EXPECT_FALSE(std::filesystem::exists(folder / "0"));
    }
    const TempFolder folder;
    ASSERT_EQ(mkfifo((folder / "tiles.json").c_str(), 0600), 0);
    EXPECT_EQ(FaultOf(Described(map), map, folder.Path()), ErrorNumber::FileNotReadable);
}

TEST(TileExport, OverwritesTheTilesOfTheSameMap) {
    const TempFolder folder;
    DrawnMap former(SlopingPicture(150, 150), 64, 64, PixelFormat::Rgb);
    DrawnMap map(SpeckledPicture(150, 150), 64, 64, PixelFormat::Rgb);
    Export(Described(former), former, folder.Path());
    WriteWholeFile(folder / "notes.txt", "kept");
    Export(Described(map), map, folder.Path());
    const auto stored = map.ReadTile(0, 2, 1);
    EXPECT_EQ(ReadWholeFile(folder / "2/1/2.png"), std::string(stored.begin(), stored.end()));
    EXPECT_EQ(ReadWholeFile(folder / "notes.txt"), "kept");
}

TEST(TileExport, NeedsAFolderThatExists) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(70, 70), 64, 64, PixelFormat::Rgb);
    std::string sentence;
    EXPECT_EQ(FaultOf(Described(map), map, folder / "missing", &sentence), ErrorNumber::FileNotWritable);
    EXPECT_THAT(sentence, HasSubstr("missing"));
}

TEST(TileExport, LeavesTilesJsonIncompleteWhenATileIsDamaged) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(200, 150), 64, 64, PixelFormat::Rgb);
    Export(Described(map), map, folder.Path());
    EXPECT_EQ(Description(folder.Path())["complete"], true);
    map.Damage(0, 1, 1);
    EXPECT_EQ(FaultOf(Described(map), map, folder.Path()), ErrorNumber::FileDamaged);
    EXPECT_EQ(Description(folder.Path())["complete"], false);
}

TEST(TileExport, StopsWhenItIsCancelled) {
    class Cancelling : public TileSource {
    public:
        Cancelling(DrawnMap& map, Progress& progress) : map_(map), progress_(progress) {}
        std::vector<std::uint8_t> ReadTile(int level, std::int32_t row, std::int32_t column) override {
            if (map_.Reads() == 5)
                progress_.Cancel();
            return map_.ReadTile(level, row, column);
        }

    private:
        DrawnMap& map_;
        Progress& progress_;
    };
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(400, 400), 64, 64, PixelFormat::Rgb);
    Progress progress;
    Cancelling source(map, progress);
    try {
        ExportTiles(Described(map), source, folder.Path(), progress);
        FAIL();
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::Cancelled);
    }
    EXPECT_LE(map.Reads(), 6);
    EXPECT_EQ(Description(folder.Path())["complete"], false);
}

TEST(TileExport, NamesTheFileThatCannotBeWritten) {
    DrawnMap map(SpeckledPicture(200, 150), 64, 64, PixelFormat::Rgb);
    const auto faultWith = [&](const auto& obstruct) {
        const TempFolder folder;
        std::filesystem::create_directories(folder / "2/1");
        obstruct(folder);
        std::string sentence;
        EXPECT_EQ(FaultOf(Described(map), map, folder.Path(), &sentence), ErrorNumber::FileNotWritable);
        EXPECT_EQ(Description(folder.Path())["complete"], false);
        return sentence;
    };
    EXPECT_THAT(faultWith([](const TempFolder& at) { WriteWholeFile(at / "2/3", "no folder"); }),
                HasSubstr("2/3"));
    EXPECT_THAT(faultWith([](const TempFolder& at) { std::filesystem::create_directory(at / "2/1/0.png"); }),
                HasSubstr("2/1/0.png"));
    EXPECT_THAT(
        faultWith([](const TempFolder& at) { ASSERT_EQ(mkfifo((at / "2/1/0.png").c_str(), 0600), 0); }),
        HasSubstr("2/1/0.png"));
    EXPECT_THAT(faultWith([](const TempFolder& at) {
                    WriteWholeFile(at / "victim", "precious");
                    std::filesystem::create_symlink(at / "victim", at / "2/1/0.png");
                }),
                HasSubstr("2/1/0.png"));
}

TEST(TileExport, SaysWhyItsFolderIsNotThereAndMakesNone) {
    const TempFolder folder;
    DrawnMap map(SpeckledPicture(100, 80), 64, 64, PixelFormat::Rgb);
    const auto sentenceFor = [&](const std::filesystem::path& path) {
        std::string sentence;
        EXPECT_EQ(FaultOf(Described(map), map, path, &sentence), ErrorNumber::FileNotWritable) << path;
        return sentence;
    };
    WriteWholeFile(folder / "file", "x");
    std::filesystem::create_symlink(folder / "nothing", folder / "dangling");
    for (const char* const name : {"gone", "gone/deep/", "dangling", "dangling/x"})
        EXPECT_THAT(sentenceFor(folder / name), HasSubstr("cannot be used: No such file or directory."));
    EXPECT_THAT(sentenceFor(folder / "file"), HasSubstr("cannot be used: Not a directory."));
    EXPECT_THAT(sentenceFor(folder / std::string(300, 'n')),
                HasSubstr("cannot be used: File name too long."));
    EXPECT_THAT(sentenceFor("/proc/no-folder/deep"), HasSubstr("cannot be used: "));
    EXPECT_FALSE(std::filesystem::exists(folder / "gone"));
}

TEST(TileExport, SaysThatTheDiskIsFull) {
    const TempFolder folder;
    Bitmap noise(300, 300); // one tile of it is larger than the limit, the texts are not
    std::uint32_t state = 1;
    for (std::uint32_t& pixel : noise.pixels)
        pixel = 0xFF000000 | (state = state * 1664525 + 1013904223) >> 8;
    DrawnMap map(noise, 128, 128, PixelFormat::Rgb);
    rlimit former{};
    getrlimit(RLIMIT_FSIZE, &former);
    const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{40000, former.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    std::string sentence;
    const ErrorNumber fault = FaultOf(Described(map), map, folder.Path(), &sentence);
    setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, formerHandler);
    EXPECT_EQ(fault, ErrorNumber::DiskFull) << sentence;
    EXPECT_THAT(sentence, HasSubstr(".png"));
    EXPECT_EQ(Description(folder.Path())["complete"], false);
    EXPECT_FALSE(std::filesystem::exists(folder / "2/0/0.png"));
}
