#include "tests/imaging/ReferenceDecoder.h"
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

} // namespace
