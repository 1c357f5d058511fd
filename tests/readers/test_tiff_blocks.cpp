// Strips and tiles that are too large to be unpacked whole.

#include "component/readers/tiff/TiffBlock.h"
#include "component/readers/tiff/TiffReader.h"
#include "tests/readers/TiffFixture.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

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

} // namespace

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

TEST(Tiff, LargeStripsAreReadRowByRow) {
    CheckTiffTheme("large-strips");
}
TEST(Tiff, LargeTilesAndLongStoredStripsAreReadRowByRow) {
    CheckTiffTheme("large-blocks");
    CheckTiffTheme("long-strips");
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
            EXPECT_EQ(TiffErrorOf(folder / "damaged.tiff"), ErrorNumber::ImageDamaged);
        }
        bytes.resize(bytes.size() / 2);
        WriteWholeFile(folder / "damaged.tiff", bytes);
        EXPECT_EQ(TiffErrorOf(folder / "damaged.tiff"), ErrorNumber::ImageDamaged);
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
        EXPECT_EQ(TiffErrorOf(folder / "damaged.tiff"), ErrorNumber::ImageDamaged);
        std::string overwritten = bytes;
        std::fill_n(overwritten.begin() + std::ssize(bytes) / 2, 100, '\x55');
        WriteWholeFile(folder / "damaged.tiff", overwritten);
        EXPECT_TRUE(IsOrderly(TiffErrorOf(folder / "damaged.tiff")));
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
            EXPECT_EQ(TiffErrorOf(file), ErrorNumber::ImageTooLarge) << kind.name;
            const std::string sentence = TiffSentenceOf(file);
            EXPECT_NE(sentence.find("in their compression (" + kind.name + ")"), std::string::npos)
                << sentence;
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
        const auto error = TiffErrorOf(file);
        EXPECT_TRUE(error && IsOrderly(error)) << "case " << i;
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss, 700 * 1024) << "KiB";
}
