#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

namespace {

std::filesystem::path MadeImages(const TempFolder& folder) {
    RunScript("make_images.py", {"bmp", folder.Path().string()});
    return folder.Path();
}

TEST(Bmp, ReadsEveryKindAsItWasWritten) {
    const TempFolder folder;
    for (const auto& image : ImagesWithTruth(MadeImages(folder))) {
        SCOPED_TRACE(image.filename());
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), ReadTruth(image)));
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image, 1), ReadTruth(image)));
    }
}

// The references are asked where they read the kind at all. Both cut 5 and 6 bits otherwise than by rounding
// (by 1 of 255); ImageMagick takes the filler of 32-bit pixels for alpha and misreads OS/2 2.x palettes;
// Pillow misplaces what follows a move in run lengths; neither stops early where a run-length code says so.
TEST(Bmp, AgreesWithPillowAndImageMagick) {
    const TempFolder folder;
    MadeImages(folder);
    for (const char* name :
         {"palette-1-core", "palette-4-info", "palette-8-v5", "rgb-24-core", "rgb-24-v4", "fields-32-8888-v4",
          "fields-32-888-info", "rle-runs", "rle-literals", "rle-runs-4"}) {
        SCOPED_TRACE(name);
        const auto image = folder / (std::string(name) + ".bmp");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithPillow(image))) << "Pillow";
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithImageMagick(image))) << "ImageMagick";
    }
    for (const char* name : {"fields-16-555", "fields-16-565", "fields-16-default"}) {
        SCOPED_TRACE(name);
        const auto image = folder / (std::string(name) + ".bmp");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithPillow(image), {1})) << "Pillow";
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithImageMagick(image), {1})) << "ImageMagick";
    }
    for (const char* name :
         {"palette-1-os2-64", "palette-8-os2-64", "rgb-32", "rle-short-rows", "rle-too-long"}) {
        SCOPED_TRACE(name);
        const auto image = folder / (std::string(name) + ".bmp");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithPillow(image))) << "Pillow";
    }
    for (const char* name : {"palette-4-v3", "rgb-24-v2", "rle-move-right", "rle-literals-4"}) {
        SCOPED_TRACE(name);
        const auto image = folder / (std::string(name) + ".bmp");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithImageMagick(image))) << "ImageMagick";
    }
}

} // namespace
