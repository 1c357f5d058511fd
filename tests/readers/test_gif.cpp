#include "base/ComponentError.h"
#include "component/readers/OpenImage.h"
#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

namespace {

TEST(Gif, ReadsEveryKindAsItWasWritten) {
    const TempFolder folder;
    RunScript("make_images.py", {"gif", folder.Path().string()});
    for (const auto& image : ImagesWithTruth(folder.Path())) {
        SCOPED_TRACE(image.filename());
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), ReadTruth(image), {0, true}));
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image, 1), ReadTruth(image), {0, true}));
    }
}

// Where the frame does not cover its screen the references differ: Pillow paints the rest in the background
// colour, ImageMagick gives the frame alone. Viewers show it transparent, as here.
TEST(Gif, AgreesWithPillowAndImageMagick) {
    const TempFolder folder;
    RunScript("make_images.py", {"gif", folder.Path().string()});
    for (const char* name : {"colours-2", "colours-256", "interlaced-37", "large", "palette-own-and-shared",
                             "screen-transparent", "screen-no-screen", "animation", "code-size-7"}) {
        SCOPED_TRACE(name);
        const auto image = folder / (std::string(name) + ".gif");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithPillow(image), {0, true})) << "Pillow";
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithImageMagick(image), {0, true}))
            << "ImageMagick";
    }
}

TEST(Gif, OfCodesThatBeginWiderThanIndicesIsReadAsImageMagickDoes) {
    const TempFolder folder;
    RunScript("make_images.py", {"gif", folder.Path().string()});
    for (const char* name : {"code-size-9", "code-size-10", "code-size-11"}) {
        SCOPED_TRACE(name);
        const auto image = folder / (std::string(name) + ".gif");
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image), DecodeWithImageMagick(image), {0, true}));
    }
}

TEST(Gif, WhoseCodesAreWrongSaysHow) {
    const TempFolder folder;
    RunScript("make_images.py", {"bad-gif", folder.Path().string()});
    const std::pair<const char*, const char*> cases[]{
        {"early-end", "its pixels end before row 21"},
        {"index", "its codes contradict themselves in row 1"},
        {"meaning", "its codes contradict themselves in row 1"},
        {"no-width", "its codes contradict themselves in row 1"},
        {"width", "the blocks before its pixels contradict themselves"}};
    for (const auto& [name, reason] : cases) {
        SCOPED_TRACE(name);
        try {
            DecodeWithEngine(folder / ("bad-" + std::string(name) + ".gif"));
            ADD_FAILURE() << "was read";
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::ImageDamaged);
            EXPECT_NE(error.Description().find(reason), std::string::npos) << error.Description();
        }
    }
}

TEST(Gif, StaysAPaletteUnlessNoIndexIsLeftForOutsideTheFrame) {
    const TempFolder folder;
    RunScript("make_images.py", {"gif", folder.Path().string()});
    EXPECT_EQ(OpenImage(folder / "colours-256.gif")->Info().format, PixelFormat::Palette);
    EXPECT_EQ(OpenImage(folder / "screen-within-free-index.gif")->Info().format, PixelFormat::Palette);
    EXPECT_EQ(OpenImage(folder / "screen-within-all-used-transparent.gif")->Info().format,
              PixelFormat::Palette);
    EXPECT_EQ(OpenImage(folder / "screen-within-all-used.gif")->Info().format, PixelFormat::Rgba);
}

} // namespace
