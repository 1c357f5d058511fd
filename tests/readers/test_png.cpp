#include "base/ComponentError.h"
#include "component/readers/OpenImage.h"
#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

namespace {

TEST(Png, ReadsEveryKindAsItWasWritten) {
    const TempFolder folder;
    RunScript("make_images.py", {"png", folder.Path().string()});
    for (const auto& image : ImagesWithTruth(folder.Path())) {
        SCOPED_TRACE(image.filename());
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), ReadTruth(image)));
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image, 1), ReadTruth(image)));
    }
}

// 16-bit samples are left out: both references cut off where this program rounds.
TEST(Png, AgreesWithPillowAndImageMagick) {
    const TempFolder folder;
    RunScript("make_images.py", {"png", folder.Path().string()});
    for (const char* name : {"type-0-1", "type-0-2-interlaced", "type-0-4", "type-0-8", "type-2-8",
                             "type-2-8-key", "type-4-8", "type-6-8-interlaced", "palette-1-2-0",
                             "palette-4-16-5", "palette-8-256-5-interlaced", "animated"}) {
        SCOPED_TRACE(name);
        const auto image = folder / (std::string(name) + ".png");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithPillow(image))) << "Pillow";
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithImageMagick(image), {0, true}))
            << "ImageMagick";
    }
}

TEST(Png, WithAWrongChecksumBesideThePixelsIsReadAndRemarkedOn) {
    const TempFolder folder;
    RunScript("make_images.py", {"bad-chunks", folder.Path().string()});
    for (const auto& image : ImagesWithTruth(folder.Path())) {
        SCOPED_TRACE(image.filename());
        const auto reader = OpenImage(image);
        EXPECT_TRUE(SamePixels(ReadAllRows(*reader), ReadTruth(image)));
        const std::string chunk = image.filename().string().substr(std::string("beside-").size(), 4);
        const std::string remark = "The chunk " + chunk + " of the image '" + image.string() +
                                   "' has a wrong checksum and was passed over.";
        EXPECT_EQ(reader->Remarks(), std::vector{remark});
    }
    for (const char* name : {"beside-tEXt-before", "beside-pHYs-after"}) {
        const auto image = folder / (std::string(name) + ".png");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithImageMagick(image))) << name;
    }
}

TEST(Png, WithAWrongChecksumOfWhatConcernsThePixelsIsDamaged) {
    const TempFolder folder;
    RunScript("make_images.py", {"bad-chunks", folder.Path().string()});
    for (const char* name : {"tRNS", "tRNs", "eXIf", "eXIg", "PLTE", "IDAT"}) {
        SCOPED_TRACE(name);
        try {
            DecodeWithEngine(folder / ("needed-" + std::string(name) + ".png"));
            ADD_FAILURE() << "was read";
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::ImageDamaged) << error.Description();
        }
    }
}

TEST(Png, KeepsItsKindOfPixels) {
    const TempFolder folder;
    RunScript("make_images.py", {"png", folder.Path().string()});
    const std::pair<const char*, PixelFormat> kinds[]{
        {"type-0-1", PixelFormat::Grey},          {"type-0-16", PixelFormat::Grey},
        {"type-0-8-key", PixelFormat::Rgba},      {"type-2-16", PixelFormat::Rgb},
        {"type-2-8-key", PixelFormat::Rgba},      {"type-4-8", PixelFormat::Rgba},
        {"type-6-16", PixelFormat::Rgba},         {"palette-1-2-0", PixelFormat::Palette},
        {"palette-8-256-5", PixelFormat::Palette}};
    for (const auto& [name, format] : kinds) {
        SCOPED_TRACE(name);
        EXPECT_EQ(OpenImage(folder / (std::string(name) + ".png"))->Info().format, format);
    }
}

} // namespace
