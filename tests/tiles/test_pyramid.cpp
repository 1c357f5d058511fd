#include "PyramidFixtures.h"

#include "base/ComponentError.h"
#include "tests/support/RunProgram.h"
#include "tests/support/TempFolder.h"
#include "tests/tiles/AllFormats.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Tile sides that divide by nothing and sizes that leave one row, one column or one pixel over.
struct Shape {
    std::int32_t width, height, tileWidth, tileHeight;
};
constexpr Shape Shapes[] = {{1, 1, 64, 64},      {64, 64, 64, 64},  {65, 63, 64, 64},   {128, 256, 64, 64},
                            {300, 1, 64, 64},    {1, 300, 64, 64},  {257, 129, 64, 64}, {301, 411, 65, 67},
                            {333, 222, 128, 65}, {515, 77, 100, 64}};

/// The mean as its definition says it, pixel by pixel in whole numbers.
Bytes HalvedRgba(const Bytes& below, std::int64_t width, std::int64_t height) {
    Bytes result;
    for (std::int64_t y = 0; y < height; y += 2)
        for (std::int64_t x = 0; x < width; x += 2) {
            std::int64_t n = 0;
            std::int64_t sums[4]{};
            for (std::int64_t v = y; v < std::min(y + 2, height); ++v)
                for (std::int64_t u = x; u < std::min(x + 2, width); ++u, ++n) {
                    const std::uint8_t* p = below.data() + (v * width + u) * 4;
                    for (int i = 0; i < 3; ++i)
                        sums[i] += std::int64_t{p[i]} * p[3];
                    sums[3] += p[3];
                }
            const std::int64_t alpha = (sums[3] + n / 2) / n;
            for (int i = 0; i < 3; ++i)
                result.push_back(
                    static_cast<std::uint8_t>(alpha == 0 ? 0 : (sums[i] + sums[3] / 2) / sums[3]));
            result.push_back(static_cast<std::uint8_t>(alpha));
        }
    return result;
}

PixelFormat FormatOfLevel(const ImageInfo& info, int level) {
    if (level == 0 || info.format != PixelFormat::Palette)
        return info.format;
    for (const PaletteEntry& entry : info.palette)
        if (entry.alpha != 255)
            return PixelFormat::Rgba;
    return PixelFormat::Rgb;
}

void Build(MemoryImage& image, const Shape& shape, MemoryTiles& tiles, Progress& progress, int threads) {
    BuildPyramid(image, PyramidLayout(shape.width, shape.height, shape.tileWidth, shape.tileHeight), tiles,
                 progress, threads);
}

/// Builds and compares every level with the definition.
void CheckPyramid(PixelFormat format, const Shape& shape, int threads, unsigned seed) {
    MemoryImage image(format, shape.width, shape.height, seed);
    MemoryTiles tiles;
    Progress progress;
    Build(image, shape, tiles, progress, threads);
    const PyramidLayout layout(shape.width, shape.height, shape.tileWidth, shape.tileHeight);
    EXPECT_EQ(std::ssize(tiles.tiles), layout.Entries());
    EXPECT_EQ(tiles.twice, 0);
    EXPECT_EQ(progress.Done(), std::int64_t{shape.width} * shape.height);
    Bytes expected = AsRgba(image);
    for (int level = 0; level < layout.Levels(); ++level) {
        SCOPED_TRACE("level " + std::to_string(level));
        const LevelPixels pixels = AssembleLevel(tiles, layout, level, FormatOfLevel(image.info, level));
        EXPECT_TRUE(pixels.edgesAreClear);
        EXPECT_TRUE(pixels.formatsAreRight);
        EXPECT_EQ(pixels.rgba, expected);
        expected = HalvedRgba(expected, pixels.width, pixels.height);
    }
}

} // namespace

TEST(Pyramid, EveryLevelIsTheMeanOfTheOneBelowInEveryFormatAndShape) {
    for (const PixelFormat format : AllFormats)
        for (const Shape& shape : Shapes)
            for (const int threads : {1, 2, 5}) {
                SCOPED_TRACE("format " + std::to_string(static_cast<int>(format)) + ", " +
                             std::to_string(shape.width) + " x " + std::to_string(shape.height) + ", " +
                             std::to_string(threads) + " threads");
                CheckPyramid(format, shape, threads, static_cast<unsigned>(threads));
            }
}

TEST(Pyramid, AnotherProgramHalvesGreysAndColoursToTheSamePixels) {
    const TempFolder folder;
    const std::string script = "import sys\nfrom PIL import Image\n"
                               "mode,w,h,path=sys.argv[1],int(sys.argv[2]),int(sys.argv[3]),sys.argv[4]\n"
                               "im=Image.frombytes(mode,(w,h),open(path,'rb').read())\nn=0\n"
                               "while max(im.size)>64:\n"
                               "  im=im.reduce(2); n+=1\n"
                               "  open(path+str(n),'wb').write(im.convert('RGBA').tobytes())\n";
    for (const PixelFormat format : {PixelFormat::Grey, PixelFormat::Rgb}) {
        MemoryImage image(format, 777, 501);
        const std::string raw = (folder / "raw").string();
        WriteWholeFile(raw, {reinterpret_cast<const char*>(image.pixels.data()), image.pixels.size()});
        const ProgramResult run = RunProgram(
            {"/usr/bin/python3", "-c", script, format == PixelFormat::Grey ? "L" : "RGB", "777", "501", raw});
        ASSERT_EQ(run.status, 0) << run.err;
        MemoryTiles tiles;
        Progress progress;
        const PyramidLayout layout(777, 501, 64, 64);
        BuildPyramid(image, layout, tiles, progress);
        for (int level = 1; level < layout.Levels(); ++level) {
            const LevelPixels pixels = AssembleLevel(tiles, layout, level, format);
            const std::string expected = ReadWholeFile(raw + std::to_string(level));
            EXPECT_EQ(std::string(pixels.rgba.begin(), pixels.rgba.end()), expected) << "level " << level;
        }
    }
}

TEST(Pyramid, TransparentPixelsDoNotBleed) {
    MemoryImage image(PixelFormat::Rgba, 128, 64);
    for (std::size_t i = 0; i < image.pixels.size(); i += 4) {
        const bool seen = i / 4 % 2 == 0;
        const std::uint8_t pixel[] = {200, 100, 50, 255};
        for (std::size_t sample = 0; sample < 4; ++sample)
            image.pixels[i + sample] = seen ? pixel[sample] : sample == 3 ? 0 : 255;
    }
    MemoryTiles tiles;
    Progress progress;
    const PyramidLayout layout(128, 64, 64, 64);
    BuildPyramid(image, layout, tiles, progress);
    const LevelPixels half = AssembleLevel(tiles, layout, 1, PixelFormat::Rgba);
    for (std::size_t i = 0; i < half.rgba.size(); i += 4) {
        ASSERT_EQ(half.rgba[i], 200);
        ASSERT_EQ(half.rgba[i + 2], 50);
        ASSERT_EQ(half.rgba[i + 3], 128) << "half of the area is covered";
    }
}

TEST(Pyramid, TheTilesDoNotDependOnTheNumberOfThreads) {
    const Shape shape{700, 900, 64, 64};
    MemoryTiles alone;
    MemoryTiles together;
    for (const auto& [tiles, threads] : {std::pair{&alone, 1}, {&together, 7}}) {
        MemoryImage image(PixelFormat::Rgb, shape.width, shape.height);
        Progress progress;
        Build(image, shape, *tiles, progress, threads);
    }
    EXPECT_EQ(alone.tiles, together.tiles);
}

TEST(Pyramid, DecodingNeverRunsMoreThanThreeBandsAheadOfTheTiles) {
    const Shape shape{640, 3000, 64, 64};
    for (const int threads : {1, 3}) {
        MemoryImage image(PixelFormat::Rgb, shape.width, shape.height);
        MemoryTiles tiles;
        Progress progress;
        std::map<std::int32_t, int> tilesOfRow;
        image.onRead = [&](std::int32_t row) {
            const std::lock_guard lock(tiles.mutex);
            int unfinished = 0;
            for (std::int32_t band = 0; band < row / 64; ++band)
                unfinished += tilesOfRow[band] < 10 ? 1 : 0;
            EXPECT_LE(unfinished, 2) << "besides the band that is being read, at row " << row;
        };
        tiles.onPut = [&](const MemoryTiles::Place& place) {
            const std::lock_guard lock(tiles.mutex);
            if (std::get<0>(place) == 0)
                ++tilesOfRow[std::get<1>(place)];
        };
        Build(image, shape, tiles, progress, threads);
        EXPECT_EQ(std::ssize(tiles.tiles), PyramidLayout(640, 3000, 64, 64).Entries());
    }
}

TEST(Pyramid, WhatTheReaderThrowsEndsTheWork) {
    const Shape shape{500, 2000, 64, 64};
    for (const int threads : {1, 4}) {
        MemoryImage image(PixelFormat::Rgb, shape.width, shape.height);
        image.onRead = [](std::int32_t row) {
            if (row >= 700)
                throw ComponentError(ErrorNumber::ImageDamaged, "it breaks off");
        };
        MemoryTiles tiles;
        Progress progress;
        try {
            Build(image, shape, tiles, progress, threads);
            FAIL() << "an error was swallowed";
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::ImageDamaged);
        }
        EXPECT_LT(std::ssize(tiles.tiles), PyramidLayout(500, 2000, 64, 64).Entries());
    }
}

TEST(Pyramid, WhatTheSinkThrowsEndsTheWork) {
    for (const int threads : {1, 4}) {
        MemoryImage image(PixelFormat::Grey, 500, 2000);
        MemoryTiles tiles;
        Progress progress;
        tiles.onPut = [](const MemoryTiles::Place& place) {
            if (place == MemoryTiles::Place{0, 9, 3})
                throw std::runtime_error("the disk is full");
        };
        EXPECT_THROW(Build(image, {500, 2000, 64, 64}, tiles, progress, threads), std::runtime_error);
    }
}

TEST(Pyramid, ACancelStopsEveryWorkerAtItsNextTileOrRows) {
    for (const int threads : {1, 4}) {
        MemoryImage image(PixelFormat::Rgb, 500, 4000);
        MemoryTiles tiles;
        Progress progress;
        std::atomic<int> after{0};
        tiles.onPut = [&](const MemoryTiles::Place& place) {
            if (progress.IsCancelled())
                ++after;
            if (place == MemoryTiles::Place{0, 5, 2})
                progress.Cancel();
        };
        try {
            Build(image, {500, 4000, 64, 64}, tiles, progress, threads);
            FAIL() << "a cancel was passed over";
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::Cancelled);
        }
        EXPECT_LE(after, threads) << "at most the tiles that were under way";
    }
}

TEST(Pyramid, ALayoutOfAnotherSizeIsRefused) {
    MemoryImage image(PixelFormat::Rgb, 100, 100);
    MemoryTiles tiles;
    Progress progress;
    EXPECT_THROW(Build(image, {100, 101, 64, 64}, tiles, progress, 1), ComponentError);
}

TEST(Pyramid, AnImageFarTooWideIsRefusedBeforeMemoryIsTaken) {
    MemoryImage image(PixelFormat::Rgb, 1, 1);
    image.info.width = 2'000'000'000;
    image.info.height = 30;
    image.UseInfo();
    MemoryTiles tiles;
    Progress progress;
    try {
        Build(image, {2'000'000'000, 30, 64, 64}, tiles, progress, 2);
        FAIL();
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::OutOfMemory);
    }
}
