#include "tests/imaging/ReferenceDecoder.h"
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

} // namespace
