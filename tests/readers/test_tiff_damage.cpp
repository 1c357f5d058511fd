// Damaged files, and files that are not read: what is said of them.

#include "component/readers/tiff/TiffReader.h"
#include "tests/readers/TiffFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

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

} // namespace

TEST(Tiff, ACutFileIsDamaged) {
    const TempFolder folder;
    for (const auto& file : SomeFiles(folder)) {
        const std::string whole = ReadWholeFile(file);
        const auto cut = folder / "cut.tiff";
        for (const std::size_t parts : {0U, 1U, 3U, 8U, 15U}) {
            WriteWholeFile(cut, whole.substr(0, whole.size() * parts / 16));
            const auto error = TiffErrorOf(cut);
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
        EXPECT_EQ(TiffErrorOf(folder / "cut.tiff"), ErrorNumber::ImageDamaged) << entry.path().filename();
    }
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
        EXPECT_EQ(TiffErrorOf(entry.path()), ErrorNumber::ImageDamaged) << name;
    }
    EXPECT_EQ(damaged, 3 * (3 * 3 + 3));
}

TEST(Tiff, JpegDataThatEndTooEarlyAreDamagedAlthoughTheirLibraryOnlyWarns) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"pixels-last", folder.Path().string()});
    const auto file = folder / "JPEG-1.tif"; // one strip
    ASSERT_EQ(TiffErrorOf(file), std::nullopt);
    std::string bytes = ReadWholeFile(file);
    bytes.replace(bytes.size() * 6 / 10, 2, "\xFF\xD9"); // the marker of the image's end
    WriteWholeFile(file, bytes);
    EXPECT_EQ(TiffErrorOf(file), ErrorNumber::ImageDamaged);
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
            EXPECT_TRUE(IsOrderly(TiffErrorOf(damaged))) << file.filename();
        }
    }
}

TEST(Tiff, PagesThatPointAtEachOtherAreHarmless) {
    const TempFolder folder;
    const auto file = folder / "loop.tiff";
    const std::vector<Tag> tags = {{256, 8}, {257, 8}, {258, 8}, {259, 1}, {262, 1},
                                   {273, 8}, {277, 1}, {278, 8}, {279, 64}};
    WriteWholeFile(file, TiffOf(tags, 8));
    EXPECT_EQ(TiffErrorOf(file), std::nullopt);
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
    EXPECT_EQ(TiffErrorOf(file), std::nullopt);
    const std::size_t strip = 8 + 2 + 5 * 12 + 8;
    bytes.replace(strip, 4, std::string("\0\0\0\1", 4)); // now the pixels lie beyond the end, too
    WriteWholeFile(file, bytes);
    const std::string sentence = TiffSentenceOf(file);
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
        const std::string sentence = TiffSentenceOf(file);
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
    const std::string sentence = TiffSentenceOf(file);
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
        const std::string sentence = TiffSentenceOf(file);
        EXPECT_NE(sentence.find("its compression (" + name + ") is not read"), std::string::npos) << sentence;
    }
}
