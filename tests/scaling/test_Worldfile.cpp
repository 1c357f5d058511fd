#include "base/ComponentError.h"
#include "component/Worldfile.h"
#include "tests/support/RunProgram.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <limits>
#include <sstream>

using testing::AllOf;
using testing::HasSubstr;

namespace {

constexpr const char* Good = "2\n0\n0\n-2\n1000\n5000\n";

void ExpectInvalid(const std::string& text, const char* says) {
    try {
        ParseWorldfile(text, "sheet.tfw");
        ADD_FAILURE() << "accepted: " << text;
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::WorldfileInvalid);
        EXPECT_THAT(error.Description(), AllOf(HasSubstr("sheet.tfw"), HasSubstr(says)));
    }
}

ErrorNumber FaultOfReading(const std::filesystem::path& file) {
    try {
        ReadWorldfile(file);
    } catch (const ComponentError& error) {
        EXPECT_THAT(error.Description(), HasSubstr(file.filename().string()));
        return error.Number();
    }
    return ErrorNumber::Failed;
}

void ExpectGood(const Affine& affine) {
    EXPECT_EQ(affine.a, 2);
    EXPECT_EQ(affine.b, 0);
    EXPECT_EQ(affine.c, 1000);
    EXPECT_EQ(affine.d, 0);
    EXPECT_EQ(affine.e, -2);
    EXPECT_EQ(affine.f, 5000);
}

} // namespace

TEST(Worldfile, IsReadInTheOrderADBECF) {
    const Affine affine = ParseWorldfile("1.5\n0.25\n-0.5\n-2\n1e5\n+6000000.125\n", "w");
    EXPECT_EQ(affine.a, 1.5);
    EXPECT_EQ(affine.d, 0.25);
    EXPECT_EQ(affine.b, -0.5);
    EXPECT_EQ(affine.e, -2);
    EXPECT_EQ(affine.c, 100000);
    EXPECT_EQ(affine.f, 6000000.125);
}

TEST(Worldfile, MayHaveAnyLineEndBlankLinesAndAByteOrderMark) {
    ExpectGood(ParseWorldfile(Good, "w"));
    ExpectGood(ParseWorldfile("2\n0\n0\n-2\n1000\n5000", "w"));
    ExpectGood(ParseWorldfile("2\r\n0\r\n0\r\n-2\r\n1000\r\n5000\r\n", "w"));
    ExpectGood(ParseWorldfile("\n 2 \n\n\t0\n0\n-2\n1000\n5000\n\n  \r\n", "w"));
    ExpectGood(ParseWorldfile(std::string("\xEF\xBB\xBF") + Good, "w"));
}

TEST(Worldfile, WithAnythingButSixFiniteNumbersIsAnErrorNamingTheLine) {
    ExpectInvalid("", "0 of the six numbers");
    ExpectInvalid("2\n0\n0\n-2\n1000\n", "ends after line 5 with 5 of the six numbers");
    ExpectInvalid(std::string(Good) + "\n7\n", "more than six numbers: line 8 is \"7\"");
    ExpectInvalid("2\nnan\n0\n-2\n1000\n5000\n", "line 2");
    ExpectInvalid("2\n0\ninf\n-2\n1000\n5000\n", "line 3");
    ExpectInvalid("2\n0\n0\n-2,5\n1000\n5000\n", "line 4, but \"-2,5\"");
    ExpectInvalid("2\n0\n0\n-2\n0x10\n5000\n", "line 5");
    ExpectInvalid("2\n0\n0\n-2\n1000\n1e999\n", "line 6");
    ExpectInvalid("2 0\n0\n-2\n1000\n5000\n", "line 1");
    ExpectInvalid(std::string("2") + '\0' + "\n0\n0\n-2\n1000\n5000\n", "line 1");
    ExpectInvalid("\xFF\xFE"
                  "2\n",
                  "line 1");
    ExpectInvalid(std::string(70000, '\n'), "too large");
}

TEST(Worldfile, IsReadFromAFile) {
    const TempFolder folder;
    WriteWholeFile(folder / "sheet.tfw", Good);
    ExpectGood(ReadWorldfile(folder / "sheet.tfw"));
    WriteWholeFile(folder / "endless.tfw", std::string(1000000, '\n'));
    EXPECT_EQ(FaultOfReading(folder / "endless.tfw"), ErrorNumber::WorldfileInvalid);
}

TEST(Worldfile, ThatIsMissingOrNoFileIsRefusedWithoutWaiting) {
    const TempFolder folder;
    EXPECT_EQ(FaultOfReading(folder / "missing.tfw"), ErrorNumber::FileNotFound);
    std::filesystem::create_directory(folder / "folder.tfw");
    EXPECT_EQ(FaultOfReading(folder / "folder.tfw"), ErrorNumber::FileNotReadable);
    ASSERT_EQ(mkfifo((folder / "pipe.tfw").c_str(), 0600), 0);
    EXPECT_EQ(FaultOfReading(folder / "pipe.tfw"), ErrorNumber::FileNotReadable);
    std::filesystem::create_symlink("/dev/zero", folder / "device.tfw");
    EXPECT_EQ(FaultOfReading(folder / "device.tfw"), ErrorNumber::FileNotReadable);
}

TEST(Worldfile, GivesThreePointsAtFixedPixels) {
    const auto points = WorldfilePoints(ParseWorldfile(Good, "w"));
    EXPECT_EQ(points[0], (ReferencePoint{1002, 4998, 1, 1}));
    EXPECT_EQ(points[1], (ReferencePoint{1002, 4800, 1, 100}));
    EXPECT_EQ(points[2], (ReferencePoint{1200, 4800, 100, 100}));
}

TEST(Worldfile, WhoseArithmeticOverflowsGivesNoPoints) {
    for (const Affine& affine :
         {Affine{1e308, 0, 0, 0, 1, 0}, Affine{1, 0, 0, 0, 1e308, 0}, Affine{1e308, -1e308, 0, 0, 1, 0},
          Affine{1, 0, std::numeric_limits<double>::quiet_NaN(), 0, 1, 0}}) {
        try {
            WorldfilePoints(affine);
            FAIL();
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::WorldfileInvalid);
        }
    }
}

/// An image of 3×2 pixels, each of its own grey, is turned by another program according to each orientation
/// tag; wherever a pixel comes to lie, it must keep its coordinate.
TEST(Worldfile, GoesThroughTheTurnOfTheImage) {
    const Affine stored{2, 0.5, 1000, -0.25, -3, 5000};
    const ProgramResult turned = RunProgram({"/usr/bin/python3", "-c", R"(
from PIL import Image, ImageOps
for orientation in range(1, 9):
    image = Image.new('L', (3, 2))
    image.putdata([0, 1, 2, 10, 11, 12])
    image.getexif()[0x0112] = orientation
    image = ImageOps.exif_transpose(image)
    for y in range(image.height):
        for x in range(image.width):
            value = image.getpixel((x, y))
            print(orientation, image.width, image.height, x, y, value % 10, value // 10)
)"});
    ASSERT_EQ(turned.status, 0) << turned.err;
    std::istringstream lines(turned.out);
    int orientation, width, height, x, y, column, row, pixels = 0;
    for (; lines >> orientation >> width >> height >> x >> y >> column >> row; ++pixels) {
        const Affine affine = TurnWorldfile(stored, static_cast<Orientation>(orientation), width, height);
        EXPECT_EQ(affine.a * x + affine.b * y + affine.c, stored.a * column + stored.b * row + stored.c)
            << orientation;
        EXPECT_EQ(affine.d * x + affine.e * y + affine.f, stored.d * column + stored.e * row + stored.f)
            << orientation;
    }
    EXPECT_EQ(pixels, 48);
}
