#include "base/ComponentError.h"
#include "component/readers/tiff/TiffBlock.h"
#include "component/readers/tiff/TiffReader.h"
#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <random>
#include <string>

namespace {

/// Compares every file of a theme with its truth.
void CheckTheme(const std::string& theme, Tolerance tolerance = {}) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {theme, folder.Path().string()});
    for (const auto& image : ImagesWithTruth(folder.Path())) {
        SCOPED_TRACE(image.filename());
        try {
            EXPECT_TRUE(SamePixels(DecodeWithEngine(image), ReadTruth(image), tolerance));
        } catch (const ComponentError& error) {
            ADD_FAILURE() << error.what();
        }
    }
}

/// The error that reading the whole file ends in, if any.
std::optional<ErrorNumber> ErrorOf(const std::filesystem::path& file) {
    try {
        const auto reader = OpenTiff(file, {});
        // A damaged file may claim any size; rows enough to come by its damage.
        const ImageInfo& info = reader->Info();
        const std::int64_t rowBytes = std::int64_t{info.width} * BytesPerPixel(info.format);
        std::vector<std::uint8_t> row(static_cast<std::size_t>(rowBytes));
        for (std::int32_t y = 0; y < std::min(info.height, 20000); ++y)
            reader->ReadRows(row.data(), static_cast<std::ptrdiff_t>(rowBytes), 1);
    } catch (const ComponentError& error) {
        EXPECT_NE(error.Description().find(file.filename().string()), std::string::npos)
            << error.Description();
        return error.Number();
    }
    return std::nullopt;
}

/// How often the first strip or tile asks whether to go on, while it is unpacked by rows.
int PausesInFirstBlock(const std::filesystem::path& image) {
    TiffFile file(image);
    const TiffLayout layout = ReadTiffLayout(file);
    int pauses = 0;
    file.PauseWith([&pauses] { ++pauses; });
    const auto block = OpenTiffBlock(file, layout, 0, image.parent_path());
    std::vector<std::uint8_t> row(static_cast<std::size_t>(TiffBlockRowBytes(layout)));
    for (std::int64_t y = 0; y < TiffBlockRows(layout, 0); ++y)
        block->ReadRow(row);
    return pauses;
}

/// What reading the whole file ends in.
std::string SentenceOf(const std::filesystem::path& file) {
    try {
        ReadAllRows(*OpenTiff(file, {}));
    } catch (const ComponentError& error) {
        return error.Description();
    }
    return {};
}

bool IsOrderly(std::optional<ErrorNumber> error) {
    return !error || error == ErrorNumber::ImageDamaged || error == ErrorNumber::ImageNotReadable ||
           error == ErrorNumber::ImageTooLarge || error == ErrorNumber::OutOfMemory;
}

/// A small file of each sort, to be damaged.
std::vector<std::filesystem::path> SomeFiles(const TempFolder& folder) {
    for (const char* theme : {"jpeg", "colours", "ycbcr", "palettes"})
        RunScript("make_tiffs.py", {theme, folder.Path().string()});
    RunScript("make_tiffs.py", {"pillow", folder.Path().string()});
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        if (entry.path().extension() == ".tif")
            files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

/// A TIFF of one strip or tile in little-endian order: tag, type (3 or 4), value.
struct Tag {
    std::uint16_t number;
    std::uint32_t value;
};

std::string TiffOf(const std::vector<Tag>& tags, std::uint32_t nextDirectory = 0,
                   std::size_t dataBytes = 64) {
    std::string file("II*\0\x08\0\0\0", 8);
    const auto put = [&file](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            file.push_back(static_cast<char>(value >> (8 * i)));
    };
    put(static_cast<std::uint32_t>(tags.size()), 2);
    for (const Tag& tag : tags) {
        put(tag.number, 2);
        put(4, 2);
        put(1, 4);
        put(tag.value, 4);
    }
    put(nextDirectory, 4);
    return file + std::string(dataBytes, '\x55');
}

} // namespace

TEST(Tiff, EveryCoderIsReadInStripsTilesAndPlanes) {
    CheckTheme("coders");
}
TEST(Tiff, FilesOfAnotherWriterAreReadInEveryCoderAndKind) {
    CheckTheme("pillow");
}
TEST(Tiff, SamplesOfEveryWidthAndKindBecomeBytes) {
    CheckTheme("bits");
}
TEST(Tiff, SamplesOfThreeBytesAreRead) {
    CheckTheme("three-bytes");
}

TEST(Tiff, PalettesOfSixteenBitsAreThoseOfImageMagick) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"palettes", folder.Path().string()});
    for (const char* name : {"palette-16-little.tif", "palette-16-big.tif"})
        EXPECT_TRUE(SamePixels(DecodeWithEngine(folder / name), DecodeWithImageMagick(folder / name)))
            << name;
}

TEST(Tiff, LargePlatesOfFewBytesAreReadAndCanBeCancelled) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"sparse-plates", folder.Path().string()});
    const std::pair<const char*, std::uint8_t> plates[] = {{"g4.tif", 255}, {"zstd.tif", 7}};
    for (const auto& [name, shade] : plates) {
        SCOPED_TRACE(name);
        const auto reader = OpenTiff(folder / name, {});
        std::vector<std::uint8_t> row(static_cast<std::size_t>(reader->Info().width));
        const std::vector<std::uint8_t> expected(row.size(), shade);
        std::int32_t differing = 0;
        for (std::int32_t y = 0; y < reader->Info().height; ++y) {
            reader->ReadRows(row.data(), static_cast<std::ptrdiff_t>(row.size()), 1);
            differing += row != expected ? 1 : 0;
        }
        EXPECT_EQ(differing, 0);
        // Every single row looks whether the work was given up.
        const auto cancelled = OpenTiff(folder / name, {});
        Progress progress;
        cancelled->WatchForCancel(progress);
        cancelled->ReadRows(row.data(), static_cast<std::ptrdiff_t>(row.size()), 1);
        progress.Cancel();
        EXPECT_THROW(cancelled->ReadRows(row.data(), static_cast<std::ptrdiff_t>(row.size()), 1),
                     ComponentError);
    }
}

TEST(Tiff, SignedAndFloatingPointSamplesAreStretchedAsAnotherReaderDoes) {
    CheckTheme("stretched");
}

TEST(Tiff, StretchedSamplesAreRemarkedOn) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"stretched", folder.Path().string()});
    const auto file = folder / "heights.tif";
    const auto reader = OpenTiff(file, {});
    ReadAllRows(*reader);
    ASSERT_EQ(reader->Remarks().size(), 1U);
    EXPECT_EQ(reader->Remarks().front(), "The signed samples of the image '" + file.string() +
                                             "' from -400 to 1640 were stretched to 0 to 255.");
}

TEST(Tiff, ColourMapsAreReadInEveryScaling) {
    CheckTheme("palettes");
}
TEST(Tiff, AlphaExtraSamplesAndInksAreReadAsTheirTagsSay) {
    CheckTheme("colours");
}
TEST(Tiff, LargeStripsAreReadRowByRow) {
    CheckTheme("large-strips");
}
TEST(Tiff, LargeTilesAndLongStoredStripsAreReadRowByRow) {
    CheckTheme("large-blocks");
    CheckTheme("long-strips");
}

TEST(Tiff, LongStoredStripsThatAreCutOrOverwrittenAreDamaged) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"long-strips", folder.Path().string()});
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() != ".tif")
            continue;
        ++files;
        SCOPED_TRACE(name);
        std::string bytes = ReadWholeFile(entry.path());
        if (name == "strip-LZW.tif") { // in others noise stands as it is, and any bytes mean something
            std::string overwritten = bytes;
            std::fill_n(overwritten.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2), 500, '\xff');
            WriteWholeFile(folder / "damaged.tiff", overwritten);
            EXPECT_EQ(ErrorOf(folder / "damaged.tiff"), ErrorNumber::ImageDamaged);
        }
        bytes.resize(bytes.size() / 2);
        WriteWholeFile(folder / "damaged.tiff", bytes);
        EXPECT_EQ(ErrorOf(folder / "damaged.tiff"), ErrorNumber::ImageDamaged);
    }
    EXPECT_EQ(files, 5);
}

TEST(Tiff, ATileOrStripAsLargeAsTheSheetNeedsNoMemoryForItAndCanBeCancelled) {
    // 30,000 x 30,000 pixels of nothing, of which the file holds no byte on the disk.
    constexpr std::uint32_t Side = 30'000, Pixels = Side * Side;
    const TempFolder folder;
    const auto file = folder / "sheet.tif";
    const std::vector<Tag> common = {{256, Side}, {257, Side}, {258, 8}, {259, 1}, {262, 1}};
    const std::vector<Tag> tile = {{277, 1}, {322, Side}, {323, Side}, {324, 4096}, {325, Pixels}};
    const std::vector<Tag> strip = {{273, 4096}, {277, 1}, {278, Side}, {279, Pixels}};
    for (const auto& kind : {tile, strip}) {
        std::vector<Tag> tags = common;
        tags.insert(tags.end(), kind.begin(), kind.end());
        WriteWholeFile(file, TiffOf(tags));
        std::filesystem::resize_file(file, std::uintmax_t{4096} + Pixels);
        const auto reader = OpenTiff(file, {});
        std::vector<std::uint8_t> row(Side, 1);
        Progress progress;
        reader->WatchForCancel(progress);
        for (std::uint32_t y = 0; y < Side / 2; ++y)
            reader->ReadRows(row.data(), std::ssize(row), 1);
        EXPECT_EQ(row, std::vector<std::uint8_t>(Side, 0));
        progress.Cancel();
        EXPECT_THROW(reader->ReadRows(row.data(), std::ssize(row), 1), ComponentError);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss, 700 * 1024) << "KiB";
}

TEST(Tiff, LargeBlocksOfEveryCoderAreReadRowByRowAndCanBeGivenUpMeanwhile) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"large-coders", folder.Path().string()});
    for (const auto& image : ImagesWithTruth(folder.Path())) {
        SCOPED_TRACE(image.filename());
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), ReadTruth(image)));
        const bool isSmall = image.filename().string().starts_with("floats-small");
        EXPECT_GT(PausesInFirstBlock(image), isSmall ? 0 : 60); // one in each quarter of a megapixel
        const std::string bytes = ReadWholeFile(image);
        WriteWholeFile(folder / "damaged.tiff", bytes.substr(0, bytes.size() / 2));
        EXPECT_EQ(ErrorOf(folder / "damaged.tiff"), ErrorNumber::ImageDamaged);
        std::string overwritten = bytes;
        std::fill_n(overwritten.begin() + std::ssize(bytes) / 2, 100, '\x55');
        WriteWholeFile(folder / "damaged.tiff", overwritten);
        EXPECT_TRUE(IsOrderly(ErrorOf(folder / "damaged.tiff")));
    }
}

TEST(Tiff, BlocksWhosePixelsNeedTooMuchMemoryAreRefusedWithTheCompressionThatNeedsIt) {
    constexpr std::uint32_t Side = 30'000;
    const TempFolder folder;
    const auto file = folder / "sheet.tiff";
    struct Kind {
        std::uint32_t compression, bits, photometric, format;
        std::string name;
    };
    const Kind kinds[] = {{34887, 32, 1, 3, "LERC"}, {34676, 16, 32844, 2, "SGI log"}};
    for (const Kind& kind : kinds) {
        const std::vector<Tag> common = {{256, Side},
                                         {257, Side},
                                         {258, kind.bits},
                                         {259, kind.compression},
                                         {262, kind.photometric},
                                         {277, 1},
                                         {339, kind.format}};
        const std::vector<Tag> tile = {{322, Side + 8}, {323, Side + 8}, {324, 8}, {325, 64}};
        const std::vector<Tag> strip = {{273, 8}, {278, Side}, {279, 64}};
        for (const auto& blocks : {tile, strip}) {
            std::vector<Tag> tags = common;
            tags.insert(tags.end(), blocks.begin(), blocks.end());
            std::ranges::sort(tags, {}, &Tag::number);
            WriteWholeFile(file, TiffOf(tags));
            EXPECT_EQ(ErrorOf(file), ErrorNumber::ImageTooLarge) << kind.name;
            const std::string sentence = SentenceOf(file);
            EXPECT_NE(sentence.find("in their compression (" + kind.name + ")"), std::string::npos)
                << sentence;
        }
    }
}

TEST(Tiff, LogarithmsOfLightAreConvertedAndJbigIsRead) {
    CheckTheme("logarithms", {.perChannel = 9});
}

TEST(Tiff, TheOrientationIsApplied) {
    CheckTheme("turned");
}
TEST(Tiff, OfSeveralPagesTheFirstIsRead) {
    CheckTheme("pages");
}
TEST(Tiff, YCbCrWithoutJpegIsConverted) {
    CheckTheme("ycbcr", {.perChannel = 2});
}

TEST(Tiff, TheOrientationIsThatOfAnotherReader) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"turned", folder.Path().string()});
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const auto file = folder / ("turned-" + std::to_string(orientation) + ".tif");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(file), DecodeWithImageMagick(file))) << orientation;
        EXPECT_EQ(static_cast<int>(OpenTiff(file, {})->Info().orientation), orientation);
    }
}

TEST(Tiff, JpegInsideIsDecodedAsOtherReadersDecodeIt) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"jpeg", folder.Path().string()});
    for (const char* name : {"ycbcr-strips", "ycbcr-tiles", "rgb", "planes", "grey"}) {
        SCOPED_TRACE(name);
        const auto file = folder / (std::string(name) + ".tif");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(file), DecodeWithImageMagick(file)));
    }
}

TEST(Tiff, PixelsKeepTheirFormat) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"pillow", folder.Path().string()});
    const std::pair<const char*, PixelFormat> cases[] = {
        {"1-group4", PixelFormat::Grey},      {"L-raw", PixelFormat::Grey},
        {"P-packbits", PixelFormat::Palette}, {"RGB-zstd", PixelFormat::Rgb},
        {"RGBA-tiff_lzw", PixelFormat::Rgba}, {"LA-lzma", PixelFormat::Rgba}};
    for (const auto& [name, format] : cases)
        EXPECT_EQ(OpenTiff(folder / (std::string(name) + ".tif"), {})->Info().format, format) << name;
}

TEST(Tiff, CielabIsConvertedByThePublishedFormulas) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"lab", folder.Path().string()});
    for (const auto& image : ImagesWithTruth(folder.Path()))
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), ReadTruth(image), {.perChannel = 8}))
            << image.filename();
}

TEST(Tiff, ACutFileIsDamaged) {
    const TempFolder folder;
    for (const auto& file : SomeFiles(folder)) {
        const std::string whole = ReadWholeFile(file);
        const auto cut = folder / "cut.tiff";
        for (const std::size_t parts : {0U, 1U, 3U, 8U, 15U}) {
            WriteWholeFile(cut, whole.substr(0, whole.size() * parts / 16));
            const auto error = ErrorOf(cut);
            EXPECT_TRUE(error && IsOrderly(error)) << file.filename() << " cut to " << parts << " of 16";
        }
    }
}

TEST(Tiff, CutPixelsAreDamagedInEveryCoder) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"pixels-last", folder.Path().string()});
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
        if (entry.path().extension() != ".tif")
            continue;
        const std::string whole = ReadWholeFile(entry.path());
        WriteWholeFile(folder / "cut.tiff", whole.substr(0, whole.size() * 9 / 10));
        EXPECT_EQ(ErrorOf(folder / "cut.tiff"), ErrorNumber::ImageDamaged) << entry.path().filename();
    }
}

TEST(Tiff, FacsimileCodersAreRead) {
    CheckTheme("fax");
}

TEST(Tiff, FacsimileRowsThatAreMissingOrOfAnotherLengthAreDamagedAlthoughTheirLibraryOnlyWarns) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"fax", folder.Path().string()});
    int damaged = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() != ".tif" || name.starts_with("whole"))
            continue;
        ++damaged;
        EXPECT_EQ(ErrorOf(entry.path()), ErrorNumber::ImageDamaged) << name;
    }
    EXPECT_EQ(damaged, 3 * (3 * 3 + 3));
}

TEST(Tiff, JpegDataThatEndTooEarlyAreDamagedAlthoughTheirLibraryOnlyWarns) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"pixels-last", folder.Path().string()});
    const auto file = folder / "JPEG-1.tif"; // one strip
    ASSERT_EQ(ErrorOf(file), std::nullopt);
    std::string bytes = ReadWholeFile(file);
    bytes.replace(bytes.size() * 6 / 10, 2, "\xFF\xD9"); // the marker of the image's end
    WriteWholeFile(file, bytes);
    EXPECT_EQ(ErrorOf(file), ErrorNumber::ImageDamaged);
}

TEST(Tiff, FlippedBytesGiveAnErrorOrPixelsButNothingElse) {
    const TempFolder folder;
    std::mt19937 random(12);
    for (const auto& file : SomeFiles(folder)) {
        const std::string whole = ReadWholeFile(file);
        const auto damaged = folder / "damaged.tiff";
        for (int round = 0; round < 25; ++round) {
            std::string bytes = whole;
            for (int flips = 0; flips < 4; ++flips) {
                // Tags stand at the file's begin or its end.
                const std::size_t reach =
                    std::min<std::size_t>(bytes.size(), round % 3 == 0 ? bytes.size() : 300);
                const std::size_t at =
                    round % 3 == 1 ? bytes.size() - 1 - random() % reach : random() % reach;
                bytes[at] = static_cast<char>(random());
            }
            WriteWholeFile(damaged, bytes);
            EXPECT_TRUE(IsOrderly(ErrorOf(damaged))) << file.filename();
        }
    }
}

TEST(Tiff, AHugeTileOrStripIsRefusedBeforeMemoryIsTaken) {
    const TempFolder folder;
    const auto file = folder / "huge.tiff";
    const std::vector<std::vector<Tag>> cases = {
        // One tile of 1 x 1,000,000,000 and the like, one strip longer than the file, a row of 16 GB.
        {{256, 1},
         {257, 100},
         {258, 8},
         {259, 1},
         {262, 1},
         {277, 1},
         {322, 16},
         {323, 1'000'000'000},
         {324, 8},
         {325, 64}},
        {{256, 100},
         {257, 100},
         {258, 8},
         {259, 1},
         {262, 1},
         {277, 1},
         {322, 4'000'000'000},
         {323, 16},
         {324, 8},
         {325, 64}},
        {{256, 2'000'000'000},
         {257, 1},
         {258, 64},
         {259, 5},
         {262, 1},
         {273, 8},
         {277, 1},
         {278, 1},
         {279, 64}},
        // A row of 60 GB whose samples are nearly all passed over.
        {{256, 60'000'000},
         {257, 1},
         {258, 8},
         {259, 5},
         {262, 1},
         {273, 8},
         {277, 1000},
         {278, 1},
         {279, 64}},
        {{256, 60'000},
         {257, 60'000},
         {258, 8},
         {259, 5},
         {262, 1},
         {273, 8},
         {277, 1},
         {278, 60'000},
         {279, 64}},
        {{256, 4'294'967'295},
         {257, 4'294'967'295},
         {258, 8},
         {259, 1},
         {262, 1},
         {273, 8},
         {277, 1},
         {279, 64}}};
    for (std::size_t i = 0; i < cases.size(); ++i) {
        WriteWholeFile(file, TiffOf(cases[i]));
        const auto error = ErrorOf(file);
        EXPECT_TRUE(error && IsOrderly(error)) << "case " << i;
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss, 700 * 1024) << "KiB";
}

TEST(Tiff, PagesThatPointAtEachOtherAreHarmless) {
    const TempFolder folder;
    const auto file = folder / "loop.tiff";
    const std::vector<Tag> tags = {{256, 8}, {257, 8}, {258, 8}, {259, 1}, {262, 1},
                                   {273, 8}, {277, 1}, {278, 8}, {279, 64}};
    WriteWholeFile(file, TiffOf(tags, 8));
    EXPECT_EQ(ErrorOf(file), std::nullopt);
}

TEST(Tiff, WhatIsNotReadIsSaidWithTheReason) {
    const TempFolder folder;
    const auto file = folder / "strange.tiff";
    const auto with = [](std::uint16_t number, std::uint32_t value) {
        std::vector<Tag> tags = {{256, 8}, {257, 8}, {258, 8}, {259, 1}, {262, 1},
                                 {273, 8}, {277, 1}, {278, 8}, {279, 64}};
        for (Tag& tag : tags)
            if (tag.number == number)
                tag.value = value;
        return TiffOf(tags);
    };
    const std::pair<std::string, std::string> cases[] = {{with(259, 12345), "compression (12345)"},
                                                         {with(259, 34712), "compression (JPEG 2000)"},
                                                         {with(262, 4), "kind (4)"},
                                                         {with(258, 48), "48 bits"},
                                                         {with(262, 2), "too few samples"}};
    for (const auto& [bytes, reason] : cases) {
        WriteWholeFile(file, bytes);
        try {
            OpenTiff(file, {});
            ADD_FAILURE() << reason;
        } catch (const ComponentError& error) {
            EXPECT_NE(error.Description().find(reason), std::string::npos) << error.Description();
        }
    }
}

TEST(Tiff, ATagOfNoUseIsPassedOverAndNotBlamedForWhatElseIsBroken) {
    const TempFolder folder;
    const auto file = folder / "tagged.tiff";
    // A tag of a maker's own, as long as the file is not.
    const std::vector<Tag> tags = {{256, 8}, {257, 8}, {258, 8}, {259, 1},  {262, 1},
                                   {273, 8}, {277, 1}, {278, 8}, {279, 64}, {65000, 1'000'000}};
    std::string bytes = TiffOf(tags);
    const std::size_t count = 8 + 2 + 9 * 12 + 4;
    bytes.replace(count, 4, std::string("\0\0\1\0", 4)); // values, where the last tag says one
    WriteWholeFile(file, bytes);
    EXPECT_EQ(ErrorOf(file), std::nullopt);
    const std::size_t strip = 8 + 2 + 5 * 12 + 8;
    bytes.replace(strip, 4, std::string("\0\0\0\1", 4)); // now the pixels lie beyond the end, too
    WriteWholeFile(file, bytes);
    const std::string sentence = SentenceOf(file);
    EXPECT_NE(sentence.find("strip"), std::string::npos) << sentence;
    EXPECT_EQ(sentence.find("65000"), std::string::npos) << sentence;
}

TEST(Tiff, WhatTheLibrarySaysOfABrokenFileStandsInTheSentence) {
    const TempFolder folder;
    const auto file = folder / "broken.tiff";
    const std::vector<Tag> whole = {{256, 8}, {257, 8}, {258, 8}, {259, 1}, {262, 1},
                                    {273, 8}, {277, 1}, {278, 8}, {279, 64}};
    const std::vector<Tag> withoutLength = {{256, 8}, {258, 8}, {259, 1}, {262, 1},
                                            {273, 8}, {277, 1}, {278, 8}};
    const std::vector<Tag> withoutStrips = {{256, 8}, {257, 8}, {258, 8}, {259, 1}, {262, 1}, {277, 1}};
    std::string elsewhere = TiffOf(whole);
    elsewhere.replace(4, 4, std::string("\0\0\0\1", 4)); // the first page lies beyond the end
    const std::pair<std::string, std::string> cases[] = {{TiffOf(withoutLength), "number of strips"},
                                                         {TiffOf(withoutStrips), "StripOffsets"},
                                                         {elsewhere, "directory"}};
    for (const auto& [bytes, reason] : cases) {
        WriteWholeFile(file, bytes);
        const std::string sentence = SentenceOf(file);
        EXPECT_NE(sentence.find(reason), std::string::npos) << sentence;
    }
}

TEST(Tiff, ColoursThatTheLibraryDoesNotConvertAreNamed) {
    const TempFolder folder;
    const auto file = folder / "deep.tiff";
    WriteWholeFile(
        file,
        TiffOf({{256, 4}, {257, 4}, {258, 16}, {259, 1}, {262, 6}, {273, 8}, {277, 3}, {278, 4}, {279, 96}},
               0, 96));
    const std::string sentence = SentenceOf(file);
    EXPECT_NE(sentence.find("YCbCr pixels of 3 samples of 16 bits"), std::string::npos) << sentence;
    EXPECT_EQ(sentence.find("Sorry"), std::string::npos) << sentence;
}

TEST(Tiff, CompressionsAreNamed) {
    const TempFolder folder;
    const auto file = folder / "coded.tiff";
    const std::pair<std::uint32_t, std::string> cases[] = {
        {34712, "JPEG 2000"}, {34715, "JBIG2"}, {50002, "JPEG XL"}, {34934, "JPEG XR"}};
    for (const auto& [number, name] : cases) {
        WriteWholeFile(file, TiffOf({{256, 8},
                                     {257, 8},
                                     {258, 8},
                                     {259, number},
                                     {262, 1},
                                     {273, 8},
                                     {277, 1},
                                     {278, 8},
                                     {279, 64}}));
        const std::string sentence = SentenceOf(file);
        EXPECT_NE(sentence.find("its compression (" + name + ") is not read"), std::string::npos) << sentence;
    }
}
