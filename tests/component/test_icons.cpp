// Icons: large ones, many of them, and damaged ones.

#include "component/Bitmap.h"
#include "component/library/IconObject.h"
#include "component/readers/OpenImage.h"
#include "component/storage/Scratch.h"
#include "tests/component/LibraryFixture.h"
#include "tests/support/RunProgram.h"

#include <algorithm>
#include <set>

namespace {

/// The side of the largest square icon.
constexpr std::int32_t LargestSide = 4096;

class LibraryIcons : public LibraryTest {
protected:
    /// Changes one byte in the stored picture of the only icon.
    static void DamagePicture(const std::string& file, AtlavexIcon& icon) {
        const std::vector<std::uint8_t> png = icon.PngFile();
        std::string content = ReadWholeFile(file);
        const auto middle = content.find(std::string(png.end() - 60, png.end() - 20));
        ASSERT_NE(middle, std::string::npos);
        content[middle] = static_cast<char>(content[middle] ^ 1);
        WriteWholeFile(file, content);
    }
};

} // namespace

TEST_F(LibraryIcons, OfSixteenMegapixelsAreImportedWithProgress) {
    const auto library = NewLibrary();
    std::set<float> seen;
    library->OnProgress = [&seen](float done) { seen.insert(done); };
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, LargestSide, LargestSide);
    const auto icon = AddIcon(*library, sheet);
    EXPECT_GT(seen.size(), 2U) << "there is something to see between beginning and end";
    EXPECT_EQ(icon->Image()->Width(), LargestSide);
    EXPECT_EQ(icon->Image()->Height(), LargestSide);
    EXPECT_EQ(ReadPngAsRgba(icon->PngFile()), AsRgba(sheet));
}

TEST_F(LibraryIcons, OfSixteenMegapixelsCanBeCancelledAtAnyMoment) {
    const std::string image = ImageOf(MakeSheet(PixelFormat::Rgb, LargestSide, LargestSide));
    for (const float part : {0.1F, 0.4F, 0.6F, 0.8F}) {
        const auto library = NewLibrary();
        float total = 0;
        float atCancel = -1;
        library->OnProgressBegin = [&total](float all, AtlavexLibrary&) { total = all; };
        library->OnProgress = [&](float done) {
            if (atCancel < 0 && done >= part * total) {
                atCancel = done;
                library->CancelOperation();
            }
        };
        EXPECT_ERROR(library->AddIconFromImageFile(image, "large"), ErrorNumber::Cancelled);
        EXPECT_EQ(library->IconCount(), 0);
        library->OnProgress = nullptr;
        AddIcon(*library, MakeSheet(PixelFormat::Grey, 9, 9));
        EXPECT_EQ(library->IconCount(), 1);
    }
}

/// A reader of an image file during which the work is given up, and which counts what is read.
class RowsUntilCancel : public RowReader {
public:
    RowsUntilCancel(std::unique_ptr<RowReader> image, std::int32_t cancelAt, Progress& progress)
        : image_(std::move(image)), cancelAt_(cancelAt), progress_(progress) {
        info_ = image_->Info();
    }
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override {
        image_->ReadRows(rows, stride, count);
        read_ += count;
        if (read_ >= cancelAt_)
            progress_.Cancel();
    }
    std::int32_t Read() const { return read_; }

private:
    std::unique_ptr<RowReader> image_;
    const std::int32_t cancelAt_;
    Progress& progress_;
    std::int32_t read_ = 0;
};

TEST_F(LibraryIcons, ThatAreCancelledWhileTheirRowsAreReadAreReadNoFurther) {
    const std::string file = ImageOf(MakeBlankSheet(LargestSide, LargestSide));
    const auto scratch = MakeScratch(SystemFiles(), PathOf(""), Envelope::Plain());
    NumberSource numbers;
    for (const std::int32_t cancelAt : {1, LargestSide / 2}) {
        Progress progress;
        RowsUntilCancel image(OpenIconImage(file, PathOf("")), cancelAt, progress);
        EXPECT_ERROR(ImportIcon(image, "large", *scratch, numbers, progress), ErrorNumber::Cancelled);
        EXPECT_LT(image.Read(), cancelAt + LargestSide / 16) << "a quarter of a megapixel, and one more";
    }
}

/// Their size in pixels is accepted; as a file they are a little larger than anything in a library may be.
TEST_F(LibraryIcons, OfSixteenMegapixelsOfNoiseAreRefusedInPlainWords) {
    const std::string image = PathOf("noise.png");
    ASSERT_EQ(
        RunProgram({"/usr/bin/python3", "-c",
                    "import os, sys\nfrom PIL import Image\n"
                    "Image.frombytes('RGBA', (4096, 4096), os.urandom(4096 * 4096 * 4)).save(sys.argv[1], "
                    "compress_level=0)",
                    image})
            .status,
        0);
    const auto library = NewLibrary();
    const Outcome outcome = OutcomeOf([&] { library->AddIconFromImageFile(image, "noise"); });
    EXPECT_EQ(outcome.code, static_cast<int>(ErrorNumber::ImageTooLarge)) << outcome.description;
    EXPECT_NE(outcome.description.find("more than 64 megabytes"), std::string::npos) << outcome.description;
    EXPECT_EQ(library->IconCount(), 0);
    AddIcon(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    library->SaveToFile(PathOf("lib.Atlavex"), {});
    EXPECT_EQ(Open(PathOf("lib.Atlavex"))->IconCount(), 1);
}

TEST_F(LibraryIcons, KeepTheirPicturesWithinABound) {
    const auto library = NewLibrary();
    for (int i = 0; i < 4; ++i)
        AddIcon(*library, MakeBlankSheet(LargestSide, LargestSide), "large");
    AddIcon(*library, MakeSheet(PixelFormat::Rgb, 16, 16), "small");
    std::vector<std::weak_ptr<const AtlavexImage>> pictures;
    for (int position = 1; position <= 4; ++position)
        pictures.push_back(IconAt(*library, position)->Image());
    const auto isKept = [](const auto& picture) { return !picture.expired(); };
    EXPECT_LE(std::ranges::count_if(pictures, isKept), 2);
    EXPECT_TRUE(isKept(pictures.back())) << "the last one looked at is at hand";
    EXPECT_EQ(IconAt(*library, 4)->Image(), pictures.back().lock());
    // Whoever shows a picture keeps it.
    const auto shown = IconAt(*library, 1)->Image();
    for (int position = 2; position <= 4; ++position)
        IconAt(*library, position)->Image();
    EXPECT_EQ(IconAt(*library, 1)->Image(), shown);
    EXPECT_EQ(shown->Width(), LargestSide);
}

TEST_F(LibraryIcons, ThatAreDamagedAreHatchedAndCanBeWorkedOn) {
    const std::string stored = PathOf("icons.Atlavex");
    {
        const auto made = NewLibrary();
        const auto torn = AddIcon(*made, MakeSheet(PixelFormat::Rgb, 50, 40), "torn");
        made->SaveToFile(stored, {});
        DamagePicture(stored, *torn);
    }
    const auto library = Open(stored);
    const auto icon = IconAt(*library, 1);
    const Bitmap& picture = *icon->Image()->Pixels();
    EXPECT_EQ(picture.width, 50);
    EXPECT_EQ(picture.height, 40);
    EXPECT_EQ(std::set<std::uint32_t>(picture.pixels.begin(), picture.pixels.end()).size(), 2U);
    EXPECT_ERROR(icon->PngFile(), ErrorNumber::FileDamaged);
    icon->SetOffsetX(5);
    icon->SetMetadata("name", "renamed");
    library->SaveToFile(stored, {});
    EXPECT_EQ(Open(stored)->Verify().size(), 1U);
    library->RemoveIcon(library->IconIdAt(1));
    library->SaveToFile(stored, {});
    EXPECT_TRUE(Open(stored)->Verify().empty());
}

TEST_F(LibraryIcons, AreFoundByTheirReferenceWhereverOthersWereRemoved) {
    const auto library = NewLibrary();
    const std::string image = ImageOf(MakeSheet(PixelFormat::Grey, 1, 1));
    for (int i = 1; i <= 300; ++i)
        library->AddIconFromImageFile(image, std::to_string(i));
    for (int position = 300; position >= 1; position -= 3)
        library->RemoveIcon(library->IconIdAt(position));
    library->SaveToFile(PathOf("many.Atlavex"), {});
    const auto again = Open(PathOf("many.Atlavex"));
    ASSERT_EQ(again->IconCount(), 200);
    for (int position = 1; position <= 200; ++position)
        EXPECT_EQ(IconAt(*again, position)->Name(),
                  std::to_string((position - 1) / 2 * 3 + (position - 1) % 2 + 1));
}
