// A reader that was written from docs/atlavex-format.md alone finds in a file what went in, and a sealed file
// shows none of it to someone without the key.

#include "base/Bytes.h"
#include "component/scaling/Scaling.h"
#include "tests/component/LibraryFixture.h"
#include "tests/support/RunProgram.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <set>

namespace {

using Json = nlohmann::json;

std::string Hex(const std::string& text) {
    return HexText(AsBytes(text));
}

Json MetadataAsJson(const std::vector<std::pair<std::string, std::string>>& metadata) {
    Json pairs = Json::array();
    for (const auto& [key, value] : metadata)
        pairs.push_back({Hex(key), Hex(value)});
    return pairs;
}

Json PointsAsJson(const std::vector<MeasuredPoint>& points) {
    Json json = Json::array();
    for (const MeasuredPoint& point : points)
        json.push_back({point.x, point.y, point.pixelX, point.pixelY, Hex(point.label)});
    return json;
}

Json GeoreferenceAsJson(const Georeference& georeference) {
    Json json{{"datum", nullptr},
              {"grid", nullptr},
              {"gridIdentifier", georeference.gridIdentifier},
              {"zone", Hex(georeference.zone)},
              {"kind", static_cast<int>(georeference.kind)},
              {"points", Json::array()}};
    if (georeference.datum)
        json["datum"] = georeference.datum->AsNumbers();
    if (georeference.grid)
        json["grid"] = {{"method", georeference.grid->method},
                        {"zone", georeference.grid->zone},
                        {"values", georeference.grid->values}};
    for (const ReferencePoint& point : georeference.points)
        json["points"].push_back({point.x, point.y, point.pixelX, point.pixelY});
    const SystemIdentity& system = georeference.system;
    json["system"] = {{"code", Hex(system.code)},
                      {"name", Hex(system.name)},
                      {"shiftCode", Hex(system.shiftCode)},
                      {"shiftName", Hex(system.shiftName)},
                      {"shiftAccuracy", system.shiftAccuracy},
                      {"shiftUnknown", system.shiftUnknown}};
    json["entered"] = PointsAsJson(georeference.entered);
    json["checks"] = Json::array();
    for (const CheckSet& set : georeference.checks)
        json["checks"].push_back({{"name", Hex(set.name)}, {"points", PointsAsJson(set.points)}});
    return json;
}

Json MapAsJson(const MapContent& map) {
    Json palette = Json::array();
    for (const PaletteEntry& entry : map.sheet.palette)
        palette.push_back({entry.red, entry.green, entry.blue, entry.alpha});
    return {{"name", Hex(map.name)},
            {"identifier", Hex(map.identifier)},
            {"format", static_cast<int>(map.sheet.format)},
            {"width", map.sheet.width},
            {"height", map.sheet.height},
            {"tileWidth", map.tileWidth},
            {"tileHeight", map.tileHeight},
            {"palette", palette},
            {"zoom", map.zoom},
            {"georeference", GeoreferenceAsJson(map.georeference)},
            {"metadata", MetadataAsJson(map.metadata)}};
}

Json IconAsJson(const IconContent& icon) {
    return {{"name", Hex(icon.name)},  {"width", icon.width},
            {"height", icon.height},   {"offsetX", icon.offsetX},
            {"offsetY", icon.offsetY}, {"metadata", MetadataAsJson(icon.metadata)}};
}

std::string AsText(const std::vector<std::uint8_t>& bytes) {
    return {bytes.begin(), bytes.end()};
}

class SecondReader : public LibraryTest {
protected:
    ProgramResult Read(const std::string& file, const std::string& key) const {
        WriteWholeFile(PathOf("key.txt"), key);
        std::filesystem::create_directories(PathOf("dump"));
        return RunProgram({"/usr/bin/python3", std::string(SOURCE_DIR) + "/tests/storage/second_reader.py",
                           file, PathOf("dump"), PathOf("key.txt")});
    }

    /// Expects the coordinates that the engine gives for the first, the middle and the last pixel.
    static void ExpectPositions(const Json& found, const MapContent& map) {
        ASSERT_EQ(found.size(), map.georeference.kind == ScalingKind::None ? 0U : 3U);
        if (found.empty())
            return;
        const auto scaling = MakeScaling(map.georeference);
        const double width = map.sheet.width, height = map.sheet.height;
        const PixelPosition pixels[] = {
            {0, 0}, {std::floor(width / 2), std::floor(height / 2)}, {width - 1, height - 1}};
        for (std::size_t i = 0; i < 3; ++i) {
            const WorldPosition world = scaling->PixelToWorld(pixels[i]);
            EXPECT_NEAR(found[i][0].get<double>(), world.x, 1e-9 * (1 + std::abs(world.x)));
            EXPECT_NEAR(found[i][1].get<double>(), world.y, 1e-9 * (1 + std::abs(world.y)));
        }
    }

    /// Expects that the second reader finds the content in the file.
    void ExpectReads(const std::string& file, const std::string& key, const LibraryContent& content,
                     int version = 1) const {
        const ProgramResult result = Read(file, key);
        ASSERT_EQ(result.status, 0) << result.err;
        Json expected{{"version", version},
                      {"sealed", !key.empty()},
                      {"maps", Json::array()},
                      {"icons", Json::array()}};
        for (const MapContent& map : content.maps) {
            expected["maps"].push_back(MapAsJson(map));
            const std::string raw = "dump/map-" + std::to_string(expected["maps"].size()) + ".raw";
            EXPECT_TRUE(ReadWholeFile(PathOf(raw)) == AsText(map.sheet.pixels)) << raw;
        }
        for (const IconContent& icon : content.icons) {
            expected["icons"].push_back(IconAsJson(icon));
            const std::string rgba = "dump/icon-" + std::to_string(expected["icons"].size()) + ".rgba";
            EXPECT_TRUE(ReadWholeFile(PathOf(rgba)) == AsText(icon.rgba)) << rgba;
        }
        Json found = Json::parse(ReadWholeFile(PathOf("dump/library.json")));
        for (std::size_t i = 0; i < content.maps.size(); ++i) {
            ExpectPositions(found["maps"].at(i).at("positions"), content.maps[i]);
            found["maps"][i].erase("positions");
        }
        EXPECT_EQ(Json::diff(found, expected), Json::array());
    }
};

/// Sheets of every format over tiles with and without edges.
std::vector<Sheet> SheetsOfEveryKind() {
    std::vector<Sheet> sheets;
    for (const PixelFormat format :
         {PixelFormat::Grey, PixelFormat::Palette, PixelFormat::Rgb, PixelFormat::Rgba}) {
        sheets.push_back(MakeSheet(format, 128, 128));
        sheets.push_back(MakeSheet(format, 333, 65));
        sheets.push_back(MakeSheet(format, 1, 1));
    }
    sheets.push_back(MakeBlankSheet(300, 300));
    return sheets;
}

} // namespace

TEST_F(SecondReader, FindsWhatWentIn) {
    for (const std::string key : {"", "key", "A\u030angstro\u0308m"}) {
        const std::string file = PathOf("lib.Atlavex");
        std::filesystem::remove(file);
        ExpectReads(file, key, SaveRichLibrary(file, key));
    }
}

TEST_F(SecondReader, FindsEveryKindOfImage) {
    for (const std::string key : {"", "key"}) {
        const auto library = NewLibrary();
        for (const Sheet& sheet : SheetsOfEveryKind()) {
            AddMap(*library, sheet, "sheet", 64, 64);
            AddIcon(*library, sheet);
        }
        library->SaveToFile(PathOf("lib" + key), key);
        ExpectReads(PathOf("lib" + key), key, ContentOf(*library));
    }
}

TEST_F(SecondReader, FindsADirectoryOfSeveralPages) {
    const auto library = NewLibrary();
    AddMap(*library, MakeSheet(PixelFormat::Grey, 64 * 41, 64 * 40), "large", 64, 64);
    library->SaveToFile(PathOf("lib.Atlavex"), "key");
    ExpectReads(PathOf("lib.Atlavex"), "key", ContentOf(*library));
}

TEST_F(SecondReader, FindsWhatWasEditedMergedAndRemoved) {
    for (const std::string key : {"", "key"}) {
        const std::string file = PathOf("lib.Atlavex");
        std::filesystem::remove(file);
        SaveRichLibrary(file, key);
        const auto library = Open(file, key);
        library->MergeFromFile(file, key);
        library->RemoveMap(library->MapIdAt(1));
        library->RemoveIcon(library->IconIdAt(2));
        MapAt(*library, 1)->SetMetadata("bytes", std::string("\0\xff'\n", 4));
        AddMap(*library, MakeSheet(PixelFormat::Rgba, 99, 101));
        library->SaveToFile(file, key);
        ExpectReads(file, key, ContentOf(*library));
        library->Compact();
        ExpectReads(file, key, ContentOf(*library));
    }
}

TEST_F(SecondReader, FindsAllThatOnlyTheSecondVersionHolds) {
    for (const std::string key : {"", "key"}) {
        const std::string file = PathOf("lib.Atlavex");
        std::filesystem::remove(file);
        SaveRichLibrary(file, key);
        const auto library = Open(file, key);
        GiveParticulars(*MapAt(*library, 1));
        library->SaveToFile(file, key);
        ExpectReads(file, key, ContentOf(*library), 2);
        GiveUnknownShift(*MapAt(*library, 2));
        library->SaveToFile(file, key);
        ExpectReads(file, key, ContentOf(*library), 2);
        library->Compact();
        ExpectReads(file, key, ContentOf(*library), 2);
        library->RemoveMap(library->MapIdAt(1));
        library->RemoveMap(library->MapIdAt(1));
        library->SaveToFile(file, key);
        ExpectReads(file, key, ContentOf(*library), 1);
    }
}

TEST_F(SecondReader, OpensTheVectorsOfTheFormatsPage) {
    const ProgramResult result =
        RunProgram({"/usr/bin/python3", std::string(SOURCE_DIR) + "/tests/storage/check_vectors.py",
                    std::string(SOURCE_DIR) + "/docs/atlavex-format.md"});
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST_F(SecondReader, FindsNothingUnderAWrongKey) {
    SaveRichLibrary(PathOf("lib.Atlavex"), "key");
    EXPECT_EQ(Read(PathOf("lib.Atlavex"), "wrong").status, 3);
    EXPECT_EQ(Read(PathOf("lib.Atlavex"), "").status, 3);
}

TEST_F(SecondReader, RefusesAPlainFileWithOneBitOfATileFlipped) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    std::string bytes = ReadWholeFile(PathOf("lib.Atlavex"));
    char& byte = bytes.at(bytes.find("IDAT") + 100);
    byte = static_cast<char>(byte ^ 1);
    WriteWholeFile(PathOf("lib.Atlavex"), bytes);
    const ProgramResult result = Read(PathOf("lib.Atlavex"), {});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("does not match its digest"), std::string::npos) << result.err;
}

namespace {

/// Sixteen bytes at a time of everything that a sealed file is to hide. Pixels as they are and as neighbours'
/// differences, which is how tiles filter them; compressed, they would show as the PNG's own marks.
std::set<std::string> Probes(const LibraryContent& content) {
    constexpr std::size_t Length = 16;
    std::set<std::string> probes{"\x89PNG\r\n\x1a\n"};
    const auto take = [&probes](const std::string& text) {
        for (std::size_t at = 0; at + Length <= text.size(); at += Length)
            probes.insert(text.substr(at, Length));
        if (text.size() >= 5 && text.size() < Length)
            probes.insert(text);
    };
    for (const MapContent& map : content.maps) {
        take(map.name);
        take(map.identifier);
        for (const auto& [key, value] : map.metadata) {
            take(key);
            take(value);
        }
        std::string palette;
        for (const PaletteEntry& entry : map.sheet.palette)
            palette.append({static_cast<char>(entry.red), static_cast<char>(entry.green),
                            static_cast<char>(entry.blue)});
        take(palette);
        const std::vector<std::uint8_t>& pixels = map.sheet.pixels;
        take(AsText(pixels).substr(0, 30000));
        std::string differences;
        for (std::size_t i = 3; i < std::min<std::size_t>(pixels.size(), 30000); ++i)
            differences += static_cast<char>(pixels[i] - pixels[i - 3]);
        take(differences);
        for (const ReferencePoint& point : map.georeference.points)
            take(std::string(reinterpret_cast<const char*>(&point.x), 8) +
                 std::string(reinterpret_cast<const char*>(&point.y), 8));
    }
    for (const IconContent& icon : content.icons) {
        take(icon.name);
        take(AsText(icon.rgba));
    }
    return probes;
}

/// How many of the probes stand in the bytes.
std::size_t Found(const std::set<std::string>& probes, const std::string& bytes) {
    std::set<std::string> found;
    for (const unsigned length : {5U, 6U, 7U, 8U, 9U, 10U, 11U, 12U, 13U, 14U, 15U, 16U})
        for (std::size_t at = 0; at + length <= bytes.size(); ++at)
            if (std::string piece = bytes.substr(at, length); probes.contains(piece))
                found.insert(std::move(piece));
    return found.size();
}

class SealedBytes : public LibraryTest {
protected:
    /// Content of short, telling pieces: the sheets are small, so that a tile is stored nearly as it is.
    LibraryContent FillTellingly(AtlavexLibrary& library) {
        const auto map = AddMap(library, MakeSheet(PixelFormat::Rgb, 64, 64), "own name of the map", 64, 64);
        map->SetMetadata("a key of the metadata", "a value of the metadata");
        map->SetMetadata("name", "Geheimes Kartenblatt");
        map->SetIdentifier("3F2504E0-4F89-11D3-9A0C-0305E82C3301");
        map->SetZone("a zone of some length");
        map->SetScalingThreePoints({570000.25, 6310000.5, 0, 0}, {580000, 6310010, 50, 0},
                                   {570010, 6302000, 0, 40});
        AddMap(library, MakeSheet(PixelFormat::Palette, 64, 64), "another own name", 64, 64);
        AddIcon(library, MakeSheet(PixelFormat::Rgba, 20, 20), "own name of the icon");
        return ContentOf(library);
    }
};

} // namespace

TEST_F(SealedBytes, APlainFileShowsWhatTheProbesLookFor) {
    const auto library = NewLibrary();
    const auto probes = Probes(FillTellingly(*library));
    library->SaveToFile(PathOf("plain.Atlavex"), {});
    EXPECT_GT(Found(probes, ReadWholeFile(PathOf("plain.Atlavex"))), 50U);
}

TEST_F(SealedBytes, ShowNothingOfTheContent) {
    const auto library = NewLibrary();
    const auto probes = Probes(FillTellingly(*library));
    const std::string file = PathOf("sealed.Atlavex");
    library->SaveToFile(file, "key");
    EXPECT_EQ(Found(probes, ReadWholeFile(file)), 0U);
    // Nor after saves in place, with free pages of what was there.
    MapAt(*library, 1)->SetMetadata("name", "Umbenanntes Kartenblatt");
    library->RemoveMap(library->MapIdAt(2));
    library->SaveToFile(file, "key");
    EXPECT_EQ(Found(probes, ReadWholeFile(file)), 0U);
    EXPECT_EQ(Found({"Umbenannt"}, ReadWholeFile(file)), 0U);
}

TEST_F(SealedBytes, OfTheScratchShowNothingOfTheContent) {
    NewLibrary()->SaveToFile(PathOf("sealed.Atlavex"), "key");
    const auto library = Open(PathOf("sealed.Atlavex"), "key");
    const auto probes = Probes(FillTellingly(*library));
    ASSERT_EQ(Names(ScratchFolder()).size(), 1U);
    const std::string scratch = ReadWholeFile(ScratchFolder() / Names(ScratchFolder())[0]);
    EXPECT_GT(scratch.size(), 12288U);
    EXPECT_EQ(Found(probes, scratch), 0U);
}

TEST_F(SealedBytes, OfTheJournalShowNothingOfTheContent) {
    // Direct work stands in the library file's own transaction until it is saved; its journal keeps the pages
    // that were there, here those of the first map, which is removed.
    const std::string file = PathOf("sealed.Atlavex");
    const auto first = NewLibrary();
    auto probes = Probes(FillTellingly(*first));
    first->SaveToFile(file, "key");
    const auto library = OpenDirectly(file, "key");
    probes.merge(Probes(FillTellingly(*library)));
    // Large enough to make SQLite write journal and file before the end.
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 2500, 1500), "the large one");
    ASSERT_TRUE(std::filesystem::exists(file + "-journal"));
    const std::string journal = ReadWholeFile(file + "-journal");
    EXPECT_GT(journal.size(), 8192U);
    EXPECT_EQ(Found(probes, journal), 0U);
    library->SaveToFile(file, "key");
}
