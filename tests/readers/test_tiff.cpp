#include "component/readers/tiff/TiffReader.h"
#include "tests/readers/TiffFixture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(Tiff, EveryCoderIsReadInStripsTilesAndPlanes) {
    CheckTiffTheme("coders");
}
TEST(Tiff, FilesOfAnotherWriterAreReadInEveryCoderAndKind) {
    CheckTiffTheme("pillow");
}
TEST(Tiff, SamplesOfEveryWidthAndKindBecomeBytes) {
    CheckTiffTheme("bits");
}
TEST(Tiff, SamplesOfThreeBytesAreRead) {
    CheckTiffTheme("three-bytes");
}

TEST(Tiff, PalettesOfSixteenBitsAreThoseOfImageMagick) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {"palettes", folder.Path().string()});
    for (const char* name : {"palette-16-little.tif", "palette-16-big.tif"})
        EXPECT_TRUE(SamePixels(DecodeWithEngine(folder / name), DecodeWithImageMagick(folder / name)))
            << name;
}

TEST(Tiff, SignedAndFloatingPointSamplesAreStretchedAsAnotherReaderDoes) {
    CheckTiffTheme("stretched");
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
    CheckTiffTheme("palettes");
}
TEST(Tiff, AlphaExtraSamplesAndInksAreReadAsTheirTagsSay) {
    CheckTiffTheme("colours");
}
TEST(Tiff, LogarithmsOfLightAreConvertedAndJbigIsRead) {
    CheckTiffTheme("logarithms", {.perChannel = 9});
}

TEST(Tiff, TheOrientationIsApplied) {
    CheckTiffTheme("turned");
}
TEST(Tiff, OfSeveralPagesTheFirstIsRead) {
    CheckTiffTheme("pages");
}
TEST(Tiff, YCbCrWithoutJpegIsConverted) {
    CheckTiffTheme("ycbcr", {.perChannel = 2});
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

TEST(Tiff, FacsimileCodersAreRead) {
    CheckTiffTheme("fax");
}
