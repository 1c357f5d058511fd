#include "tests/component/LibraryFixture.h"

#include "component/Bitmap.h"

#include <algorithm>
#include <array>
#include <ostream>

namespace {

constexpr QuorvantDatum::Numbers SomeDatum{6378388.0, 0.00672267002233, -87, -98, -121, 0.1, -0.2, 0.3, 1.5};
constexpr std::array<double, 7> SomeGrid{0, 9, 0.9996, 500000, 0, 0, 0};

} // namespace

void PrintTo(const Sheet& sheet, std::ostream* out) {
    std::size_t sum = 0;
    for (const std::uint8_t sample : sheet.pixels)
        sum = sum * 31 + sample;
    *out << "format " << static_cast<int>(sheet.format) << ", " << sheet.width << " x " << sheet.height
         << ", " << sheet.palette.size() << " colours, " << sheet.pixels.size() << " bytes summing to "
         << sum;
}

void PrintTo(const MapContent& map, std::ostream* out) {
    *out << "map '" << map.name << "' {" << map.identifier << "}, ";
    PrintTo(map.sheet, out);
    *out << ", tiles " << map.tileWidth << " x " << map.tileHeight << ", zoom " << map.zoom << ", "
         << map.georeference.points.size() << " points, metadata "
         << testing::PrintToString(map.metadata).substr(0, 500);
}

void PrintTo(const IconContent& icon, std::ostream* out) {
    *out << "icon '" << icon.name << "', " << icon.width << " x " << icon.height << ", offset "
         << icon.offsetX << ", " << icon.offsetY << ", metadata "
         << testing::PrintToString(icon.metadata).substr(0, 500);
}

void PrintTo(const LibraryContent& library, std::ostream* out) {
    for (const MapContent& map : library.maps) {
        *out << "\n    ";
        PrintTo(map, out);
    }
    for (const IconContent& icon : library.icons) {
        *out << "\n    ";
        PrintTo(icon, out);
    }
}

std::vector<std::pair<std::string, std::string>> MetadataOf(const Metadata& object) {
    std::vector<std::pair<std::string, std::string>> pairs;
    for (std::int32_t position = 1; position <= object.MetadataCount(); ++position)
        pairs.emplace_back(object.MetadataKeyAt(position), object.MetadataValueAt(position));
    return pairs;
}

Sheet SheetOf(AtlavexMap& map) {
    Sheet sheet{map.Format(), map.Width(), map.Height(), map.ColourTable(), {}};
    std::int32_t rows = 0;
    map.ReadPixels([&](std::span<const std::uint8_t> band, std::int32_t count) {
        sheet.pixels.insert(sheet.pixels.end(), band.begin(), band.end());
        rows += count;
    });
    EXPECT_EQ(rows, map.Height());
    return sheet;
}

MapContent ContentOf(AtlavexMap& map) {
    return {map.Identifier(),          map.Name(), SheetOf(map),          map.Layout().TileWidth(),
            map.Layout().TileHeight(), map.Zoom(), map.MapGeoreference(), MetadataOf(map)};
}

IconContent ContentOf(AtlavexIcon& icon) {
    const auto image = icon.Image();
    return {icon.Name(),    image->Width(), image->Height(), ReadPngAsRgba(icon.PngFile()),
            icon.OffsetX(), icon.OffsetY(), MetadataOf(icon)};
}

LibraryContent ContentOf(AtlavexLibrary& library) {
    LibraryContent content;
    for (std::int32_t position = 1; position <= library.MapCount(); ++position)
        content.maps.push_back(ContentOf(*library.GetMap(library.MapIdAt(position))));
    for (std::int32_t position = 1; position <= library.IconCount(); ++position)
        content.icons.push_back(ContentOf(*library.GetIcon(library.IconIdAt(position))));
    return content;
}

Outcome OutcomeOf(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const ComponentError& error) {
        return {error.Code(), error.Description()};
    }
    return {};
}

LibraryTest::LibraryTest() {
    std::filesystem::create_directory(ScratchFolder());
    std::filesystem::create_directory(folder_ / "images");
}

LibraryOptions LibraryTest::Options() const {
    LibraryOptions options;
    options.scratchFolder = ScratchFolder().string();
    options.keyOperations = 1;
    options.keyMemoryMiB = 8;
    return options;
}

std::unique_ptr<AtlavexLibrary> LibraryTest::NewDirectLibrary() const {
    LibraryOptions options = Options();
    options.newTiles = NewTiles::LibraryFile;
    return CreateAtlavexLibrary(options);
}

std::unique_ptr<AtlavexLibrary> LibraryTest::Open(const std::string& file, const std::string& key) const {
    auto library = NewLibrary();
    library->LoadFromFile(file, key);
    return library;
}

std::unique_ptr<AtlavexLibrary> LibraryTest::OpenDirectly(const std::string& file,
                                                          const std::string& key) const {
    auto library = NewDirectLibrary();
    library->LoadFromFile(file, key);
    return library;
}

std::vector<std::string> LibraryTest::Names(const std::filesystem::path& folder) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? folder_.Path() : folder))
        if (!entry.is_directory())
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string LibraryTest::ImageOf(const Sheet& sheet) {
    const auto file = folder_ / "images" / ("image" + std::to_string(++images_) + ".png");
    WritePng(sheet, file);
    return file.string();
}

std::shared_ptr<AtlavexMap> LibraryTest::AddMap(AtlavexLibrary& library, const Sheet& sheet,
                                                const std::string& name, std::int32_t tileWidth,
                                                std::int32_t tileHeight) {
    return library.AddMapFromImageFile(ImageOf(sheet), name, tileWidth, tileHeight);
}

std::shared_ptr<AtlavexIcon> LibraryTest::AddIcon(AtlavexLibrary& library, const Sheet& sheet,
                                                  const std::string& name) {
    return library.AddIconFromImageFile(ImageOf(sheet), name);
}

void LibraryTest::FillRichly(AtlavexLibrary& library) {
    const auto north = AddMap(library, MakeSheet(PixelFormat::Rgb, 300, 200, 1), "north");
    north->SetIdentifier("{2F0C1F2E-7B1D-4C55-9E0A-5C1B7C0A1D01}");
    north->SetMetadata("name", "North");
    north->SetMetadata("description", "First line\nsecond line");
    north->SetMetadata("zeta", "last letter, third place");
    north->SetMetadata("alpha", "first letter, fourth place");
    north->SetMapDatum(SomeDatum);
    north->SetMapGrid(1, 32, SomeGrid);
    north->SetGridIdentifier(7);
    north->SetZone("32");
    north->SetScalingCorners({500000, 6000000, 0, 0}, {500000, 5990000, 3, 199}, {510000, 6000000, 299, 1},
                             {510000, 5990000, 297, 198});
    north->SetZoom(0.75);
    const auto south = AddMap(library, MakeSheet(PixelFormat::Palette, 129, 65, 2), "south", 64, 64);
    south->SetIdentifier("{2F0C1F2E-7B1D-4C55-9E0A-5C1B7C0A1D02}");
    south->SetMapDatum(SomeDatum);
    south->SetScalingThreePoints({10, 50, 0, 0}, {11, 50.1, 128, 0}, {10, 49, 0, 64});
    const auto church = AddIcon(library, MakeSheet(PixelFormat::Rgba, 32, 16, 3), "church");
    church->SetMetadata("name", "Church");
    church->SetMetadata("version", "1.0");
    church->SetOffsetX(-7);
    church->SetOffsetY(2147483647);
    AddIcon(library, MakeSheet(PixelFormat::Grey, 5, 9, 4), "well");
}

LibraryContent LibraryTest::SaveRichLibrary(const std::string& file, const std::string& key) {
    const auto library = NewLibrary();
    FillRichly(*library);
    LibraryContent content = ContentOf(*library);
    library->SaveToFile(file, key);
    return content;
}

void LibraryTest::GiveParticulars(AtlavexMap& map) {
    map.SetMapDatum(SomeDatum);
    map.SetMapGrid(1, 32, SomeGrid);
    map.SetSystemIdentity(
        {"EPSG:23032", "ED50 / UTM zone 32N", "EPSG:1612", "ED50 to WGS 84 (23)", 2.5, false});
    map.SetEnteredPoints({{500000.25, 6000000, 0.5, 0, "north-west"},
                          {500000, 5990000, -3.125, 199, ""},
                          {510000, 6000000, 299, 1e9, std::string("\0\xff", 2)},
                          {510000, 5990000, 297, 198.75, "S\u00fcd-Ost"}});
    map.SetCheckSets({{"towers", {{505000, 5995000, 150.25, 100.5, "mill"}}},
                      {"", {}},
                      {"corners", {{1, 2, 3, 4, ""}, {5, 6, 7, 8, ""}}}});
    map.SetScalingThreePoints({500000, 6000000, 0, 0}, {510000, 6000000, 299, 0}, {500000, 5990000, 0, 199});
}

void LibraryTest::GiveUnknownShift(AtlavexMap& map) {
    map.SetMapDatum({6377397.155, 0.006674372231802145, 0, 0, 0, 0, 0, 0, 0});
    map.SetSystemIdentity({"", "Bessel, local", "", "", 0, true});
    map.SetScalingThreePoints({10, 50, 0, 0}, {11, 50.1, 128, 0}, {10, 49, 0, 64});
}

void LibraryTest::ExpectHolds(const std::string& file, const std::string& key,
                              const LibraryContent& content) const {
    const auto library = Open(file, key);
    EXPECT_TRUE(library->KeyFitted());
    EXPECT_EQ(library->IsSealed(), !key.empty());
    EXPECT_EQ(ContentOf(*library), content);
    for (const Damage& damage : library->Verify())
        ADD_FAILURE() << damage.object << ": " << damage.reason;
}
