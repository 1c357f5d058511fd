// Every kind of image, tile size and image size comes back from a file as it went in.

#include "component/Bitmap.h"
#include "tests/component/LibraryFixture.h"

namespace {

constexpr std::array AllFormats{PixelFormat::Grey, PixelFormat::Palette, PixelFormat::Rgb, PixelFormat::Rgba};

struct Size {
    std::int32_t width;
    std::int32_t height;
};

class LibraryImages : public LibraryTest {
protected:
    /// Adds the sheets as maps, saves, reopens, and compares all pixels with those that went in.
    void ExpectComesBack(const std::vector<Sheet>& sheets, std::int32_t tileWidth, std::int32_t tileHeight) {
        const auto library = NewLibrary();
        for (const Sheet& sheet : sheets) {
            const auto map = AddMap(*library, sheet, "sheet", tileWidth, tileHeight);
            EXPECT_EQ(SheetOf(*map), sheet) << "before saving";
        }
        const std::string file = PathOf("images.Atlavex");
        library->SaveToFile(file, {});
        const auto again = Open(file);
        ASSERT_EQ(again->MapCount(), static_cast<std::int32_t>(sheets.size()));
        for (std::size_t i = 0; i < sheets.size(); ++i) {
            const auto map = MapAt(*again, static_cast<std::int32_t>(i) + 1);
            EXPECT_EQ(map->Layout().TileWidth(), tileWidth);
            EXPECT_EQ(map->Layout().TileHeight(), tileHeight);
            EXPECT_EQ(SheetOf(*map), sheets[i]);
        }
        EXPECT_TRUE(again->Verify().empty());
        std::filesystem::remove(file);
    }
};

} // namespace

TEST_F(LibraryImages, ComeBackInEveryTileSizeIndependentlyEachWay) {
    const std::vector<Sheet> sheets{MakeSheet(PixelFormat::Rgb, 601, 299)};
    for (const std::int32_t tileWidth : {64, 128, 256, 512, 1024})
        for (const std::int32_t tileHeight : {64, 128, 256, 512, 1024})
            ExpectComesBack(sheets, tileWidth, tileHeight);
}

TEST_F(LibraryImages, ComeBackInTileSizesThatAreNoPowersOfTwo) {
    ExpectComesBack({MakeSheet(PixelFormat::Rgb, 500, 300)}, 100, 77);
}

TEST_F(LibraryImages, ComeBackInEveryPixelFormatAndOddSize) {
    for (const PixelFormat format : AllFormats) {
        std::vector<Sheet> sheets;
        for (const auto& [width, height] :
             {Size{1, 1}, Size{1, 300}, Size{300, 1}, Size{64, 64}, Size{65, 64}, Size{64, 65}, Size{63, 63},
              Size{256, 128}, Size{257, 129}, Size{255, 127}, Size{2, 3}, Size{1000, 7}})
            sheets.push_back(MakeSheet(format, width, height,
                                       static_cast<unsigned>(width) * 1000U + static_cast<unsigned>(height)));
        ExpectComesBack(sheets, 64, 64);
        ExpectComesBack(sheets, 256, 128);
    }
}

TEST_F(LibraryImages, OfOneColourShareOneTileAndComeBack) {
    ExpectComesBack({MakeBlankSheet(640, 640), MakeBlankSheet(1, 1)}, 64, 64);
}

TEST_F(LibraryImages, WithAColourTwiceInThePaletteKeepTheirColours) {
    Sheet sheet = MakeSheet(PixelFormat::Palette, 100, 100);
    sheet.palette[7] = sheet.palette[9];
    const auto library = NewLibrary();
    const auto map = AddMap(*library, sheet, "sheet", 64, 64);
    EXPECT_EQ(AsRgba(SheetOf(*map)), AsRgba(sheet));
    EXPECT_EQ(map->ColourTable(), sheet.palette);
}

TEST_F(LibraryImages, InOtherTileSizesAreRefusedAndAddNothing) {
    const auto library = NewLibrary();
    const Sheet sheet = MakeSheet(PixelFormat::Grey, 10, 10);
    for (const Size size :
         {Size{63, 64}, Size{64, 63}, Size{1025, 64}, Size{64, 1025}, Size{0, 256}, Size{-256, 256}})
        EXPECT_ERROR(AddMap(*library, sheet, "sheet", size.width, size.height), ErrorNumber::InvalidTileSize);
    EXPECT_EQ(library->MapCount(), 0);
}

TEST_F(LibraryImages, ThatCannotBeReadAddNothingAndSayWhy) {
    const auto library = NewLibrary();
    const std::string missing = PathOf("missing.png"), text = PathOf("text.png"), torn = PathOf("torn.png");
    WriteWholeFile(text, "no image at all, just text");
    const std::string whole = ReadWholeFile(ImageOf(MakeSheet(PixelFormat::Rgb, 400, 400)));
    WriteWholeFile(torn, whole.substr(0, whole.size() / 2));
    const std::vector<std::pair<std::string, ErrorNumber>> cases{
        {missing, ErrorNumber::FileNotFound},
        {text, ErrorNumber::ImageNotReadable},
        {torn, ErrorNumber::ImageDamaged},
        {PathOf("scratch"), ErrorNumber::FileNotReadable}};
    for (const auto& refused : cases) {
        const std::string& file = refused.first;
        const ErrorNumber number = refused.second;
        const Outcome asMap = OutcomeOf([&] { library->AddMapFromImageFile(file, "m", 64, 64); });
        EXPECT_EQ(asMap.code, static_cast<int>(number)) << asMap.description;
        EXPECT_NE(asMap.description.find(file), std::string::npos) << asMap.description;
        const Outcome asIcon = OutcomeOf([&] { library->AddIconFromImageFile(file, "i"); });
        EXPECT_EQ(asIcon.code, static_cast<int>(number)) << asIcon.description;
    }
    EXPECT_EQ(library->MapCount(), 0);
    EXPECT_EQ(library->IconCount(), 0);
    library->SaveToFile(PathOf("empty.Atlavex"), {});
    ExpectHolds(PathOf("empty.Atlavex"), {}, {});
}

TEST_F(LibraryImages, ATornImageLeavesNothingInTheFileItWasAddedTo) {
    const std::string file = PathOf("lib.Atlavex"), torn = PathOf("torn.png");
    const LibraryContent content = SaveRichLibrary(file);
    const std::string whole = ReadWholeFile(ImageOf(MakeSheet(PixelFormat::Rgb, 400, 400)));
    WriteWholeFile(torn, whole.substr(0, whole.size() / 2));
    const auto library = OpenDirectly(file);
    EXPECT_ERROR(library->AddMapFromImageFile(torn, "m", 64, 64), ErrorNumber::ImageDamaged);
    library->SaveToFile(file, {});
    ExpectHolds(file, {}, content);
}

TEST_F(LibraryImages, AsIconsComeBackInEveryPixelFormat) {
    const auto library = NewLibrary();
    std::vector<Sheet> sheets;
    for (const PixelFormat format : AllFormats)
        for (const auto& [width, height] : {Size{1, 1}, Size{32, 32}, Size{300, 7}})
            AddIcon(*library, sheets.emplace_back(MakeSheet(format, width, height)));
    library->SaveToFile(PathOf("icons.Atlavex"), {});
    const auto again = Open(PathOf("icons.Atlavex"));
    ASSERT_EQ(again->IconCount(), static_cast<std::int32_t>(sheets.size()));
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        const auto icon = IconAt(*again, static_cast<std::int32_t>(i) + 1);
        EXPECT_EQ(ReadPngAsRgba(icon->PngFile()), AsRgba(sheets[i]));
        EXPECT_EQ(icon->Image()->Width(), sheets[i].width);
        EXPECT_EQ(icon->Image()->Height(), sheets[i].height);
    }
}

TEST_F(LibraryImages, AsIconsAreShownWithColoursTimesAlpha) {
    Sheet sheet{PixelFormat::Rgba, 2, 1, {}, {255, 0, 100, 128, 9, 9, 9, 0}};
    const auto library = NewLibrary();
    const auto image = AddIcon(*library, sheet)->Image();
    ASSERT_NE(image->Pixels(), nullptr);
    EXPECT_EQ(image->Pixels()->pixels, (std::vector<std::uint32_t>{0x80800032, 0}));
}
