#include "component/readers/OpenImage.h"
#include "component/readers/common/ExifOrientation.h"
#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

namespace {

using namespace std::string_literals;

Orientation OrientationOf(const std::string& exif) {
    // A buffer of exactly this size, so that a sanitizer sees a look beyond it.
    const std::vector<std::uint8_t> bytes(exif.begin(), exif.end());
    return ExifOrientation(bytes);
}

void ExpectTruth(const std::string& theme, std::int32_t rowsAtOnce) {
    const TempFolder folder;
    RunScript("make_images.py", {theme, folder.Path().string()});
    for (const auto& image : ImagesWithTruth(folder.Path())) {
        SCOPED_TRACE(image.filename());
        EXPECT_TRUE(SamePixels(DecodeWithEngine(image, rowsAtOnce), ReadTruth(image)));
        const int number = image.stem().string().back() - '0';
        EXPECT_EQ(OpenImage(image)->Info().orientation, static_cast<Orientation>(number));
    }
}

TEST(Orientation, TurnsEveryPixelFormatAsPillowDoes) {
    ExpectTruth("turned", 1);
    ExpectTruth("turned", 1000);
}

TEST(Orientation, TurnsImagesThatFillSeveralBuffers) {
    ExpectTruth("turned-large", 301);
}

TEST(Orientation, EndsATurnThatIsCancelled) {
    const TempFolder folder;
    RunScript("make_images.py", {"turned", folder.Path().string()});
    for (const char* name : {"rgb-2.png", "rgb-3.png", "rgb-6.png"}) {
        SCOPED_TRACE(name);
        const auto reader = OpenImage(folder / name);
        Progress progress;
        reader->WatchForCancel(progress);
        progress.Cancel();
        if (name != "rgb-2.png"s)
            EXPECT_THROW(ReadAllRows(*reader), ComponentError);
        else
            ReadAllRows(*reader);
    }
}

TEST(ExifOrientation, IsReadInBothByteOrders) {
    EXPECT_EQ(OrientationOf("II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x06\0\0\0"s),
              Orientation::RightTop);
    EXPECT_EQ(OrientationOf("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x08\0\0"s),
              Orientation::LeftBottom);
}

TEST(ExifOrientation, IsNoneWhereTheDataAreBroken) {
    const std::string whole = "II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x06\0\0\0"s;
    for (std::size_t length = 0; length < 20; ++length)
        EXPECT_EQ(OrientationOf(whole.substr(0, length)), Orientation::TopLeft) << length << " bytes";
    std::string changed = whole;
    changed[18] = 9; // no such orientation
    EXPECT_EQ(OrientationOf(changed), Orientation::TopLeft);
    changed = whole;
    changed[12] = 4; // not a 16-bit number
    EXPECT_EQ(OrientationOf(changed), Orientation::TopLeft);
    changed = whole;
    changed.replace(4, 4, "\xFF\xFF\xFF\xFF"); // the directory lies far beyond the data
    EXPECT_EQ(OrientationOf(changed), Orientation::TopLeft);
}

} // namespace
