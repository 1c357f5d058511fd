#include "base/ComponentError.h"
#include "tests/imaging/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

#include <map>
#include <set>

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

} // namespace
