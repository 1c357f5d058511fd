#include "base/ComponentError.h"
#include "component/readers/OpenImage.h"
#include "tests/readers/JpegWriter.h"
#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace std::string_literals;

/// Other builds of the same library may round the inverse transform otherwise.
constexpr Tolerance Rounding{2};

struct Case {
    std::string name;
    JpegOptions options;
};

void ExpectAsReferences(const std::vector<Case>& cases, std::int32_t width = 203, std::int32_t height = 117) {
    const TempFolder folder;
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const auto file = folder / (each.name + ".jpg");
        WriteJpeg(file, width, height, each.options);
        const RgbaImage image = DecodeWithEngine(file);
        EXPECT_TRUE(SamePixels(image, DecodeWithPillow(file), Rounding)) << "Pillow";
        EXPECT_TRUE(SamePixels(image, DecodeWithImageMagick(file), Rounding)) << "ImageMagick";
    }
}

TEST(Jpeg, ReadsEveryColourSpaceAsTheReferencesDo) {
    ExpectAsReferences({{"grey", {.stored = JCS_GRAYSCALE}},
                        {"ycbcr", {}},
                        {"rgb", {.stored = JCS_RGB}},
                        {"cmyk", {.stored = JCS_CMYK}},
                        {"ycck", {.stored = JCS_YCCK}},
                        // Both references take the inks for inverted here, too.
                        {"cmyk-unmarked", {.stored = JCS_CMYK, .adobeMarker = false}}});
}

TEST(Jpeg, ReadsEveryChromaSamplingAsTheReferencesDo) {
    ExpectAsReferences({{"444", {.sampling = {{1, 1}, {1, 1}, {1, 1}}}},
                        {"422", {.sampling = {{2, 1}, {1, 1}, {1, 1}}}},
                        {"420", {.sampling = {{2, 2}, {1, 1}, {1, 1}}}},
                        {"440", {.sampling = {{1, 2}, {1, 1}, {1, 1}}}},
                        {"411", {.sampling = {{4, 1}, {1, 1}, {1, 1}}}},
                        {"410", {.sampling = {{4, 2}, {1, 1}, {1, 1}}}},
                        {"uneven", {.sampling = {{2, 2}, {2, 1}, {1, 2}}}}});
}

TEST(Jpeg, ReadsEveryCodingAsTheReferencesDo) {
    ExpectAsReferences({{"progressive", {.progressive = true}},
                        {"progressive-grey", {.stored = JCS_GRAYSCALE, .progressive = true}},
                        {"progressive-cmyk", {.stored = JCS_YCCK, .progressive = true}},
                        {"arithmetic", {.arithmetic = true}},
                        {"arithmetic-progressive", {.progressive = true, .arithmetic = true}},
                        {"scan-for-each-component", {.sequentialScans = true}},
                        {"restarts", {.restartRows = 1}},
                        {"worst-quality", {.quality = 1}},
                        {"best-quality", {.quality = 100}}});
}

TEST(Jpeg, ReadsImagesSmallerThanABlock) {
    for (const std::int32_t side : {1, 2, 7, 8, 9, 17}) {
        SCOPED_TRACE(side);
        ExpectAsReferences({{"sequential", {}}, {"progressive", {.progressive = true}}}, side, 18 - side);
    }
}

TEST(Jpeg, ReadsProgressiveImagesThatDoNotFitItsWindowsInMemory) {
    const JpegOptions everyWindowMoves{
        .sampling = {{1, 1}, {1, 1}, {1, 1}}, .quality = 40, .progressive = true};
    const TempFolder folder;
    WriteJpeg(folder / "large.jpg", 4303, 4101, everyWindowMoves);
    EXPECT_TRUE(SamePixels(DecodeWithEngine(folder / "large.jpg", 100),
                           DecodeWithPillow(folder / "large.jpg"), Rounding));
}

TEST(Jpeg, StopsDecodingAProgressiveImageThatIsCancelled) {
    const TempFolder folder;
    WriteJpeg(folder / "image.jpg", 203, 117, {.progressive = true});
    const auto reader = OpenImage(folder / "image.jpg");
    Progress progress;
    reader->WatchForCancel(progress);
    progress.Cancel();
    try {
        ReadAllRows(*reader);
        ADD_FAILURE() << "was read";
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::Cancelled);
    }
}

TEST(Jpeg, KeepsGreyAsOneByteAPixel) {
    const TempFolder folder;
    WriteJpeg(folder / "grey.jpg", 20, 10, {.stored = JCS_GRAYSCALE});
    EXPECT_EQ(OpenImage(folder / "grey.jpg")->Info().format, PixelFormat::Grey);
}

TEST(Jpeg, IsTurnedAsItsExifDataAsk) {
    const TempFolder folder;
    for (int number = 1; number <= 8; ++number) {
        SCOPED_TRACE(number);
        const char last = static_cast<char>(number);
        const std::string exif =
            "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0"s + last + "\0\0\0\0\0\0"s;
        WriteJpeg(folder / "turned.jpg", 45, 31, {.exif = exif});
        const RgbaImage image = DecodeWithEngine(folder / "turned.jpg");
        EXPECT_EQ(image.width, number < 5 ? 45 : 31);
        EXPECT_TRUE(SamePixels(image, DecodeWithPillow(folder / "turned.jpg"), Rounding));
        EXPECT_TRUE(SamePixels(image, DecodeWithImageMagick(folder / "turned.jpg"), Rounding));
    }
}

TEST(Jpeg, ThatLacksOnlyItsEndMarkIsReadAndRemarkedOn) {
    const TempFolder folder;
    const std::pair<const char*, JpegOptions> kinds[]{{"sequential", {}},
                                                      {"progressive", {.progressive = true}},
                                                      {"scans", {.sequentialScans = true}},
                                                      {"restarts", {.restartRows = 1}},
                                                      {"inks", {.stored = JCS_YCCK}},
                                                      {"grey", {.stored = JCS_GRAYSCALE}}};
    for (const auto& [name, options] : kinds) {
        WriteJpeg(folder / "whole.jpg", 203, 117, options);
        const std::string whole = ReadWholeFile(folder / "whole.jpg");
        for (const std::size_t less : {1U, 2U}) {
            SCOPED_TRACE(std::string(name) + " without " + std::to_string(less));
            const auto cut = folder / "cut.jpg";
            WriteWholeFile(cut, whole.substr(0, whole.size() - less));
            const auto reader = OpenImage(cut);
            const RgbaImage image = ReadAllRows(*reader);
            EXPECT_TRUE(SamePixels(image, DecodeWithEngine(folder / "whole.jpg")));
            EXPECT_TRUE(SamePixels(image, DecodeWithImageMagick(cut), Rounding));
            EXPECT_EQ(reader->Remarks(), std::vector{"The image '" + cut.string() +
                                                     "' lacks its end mark; its pixels are whole."});
        }
    }
}

TEST(Jpeg, ThatLacksAWholeScanIsDamaged) {
    const TempFolder folder;
    const auto expectDamaged = [&](const std::string& bytes) {
        WriteWholeFile(folder / "cut.jpg", bytes);
        try {
            DecodeWithEngine(folder / "cut.jpg");
            ADD_FAILURE() << "was read";
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::ImageDamaged) << error.Description();
        }
    };
    const auto withoutLastScan = [&](const JpegOptions& options) {
        WriteJpeg(folder / "whole.jpg", 203, 117, options);
        const std::string whole = ReadWholeFile(folder / "whole.jpg");
        return whole.substr(0, whole.rfind("\xFF\xDA"));
    };
    expectDamaged(withoutLastScan({.progressive = true}));
    expectDamaged(withoutLastScan({.sequentialScans = true}));
    expectDamaged(withoutLastScan({.sequentialScans = true}) + "\xFF\xD9");
}

TEST(Jpeg, ThatBreaksOffIsDamagedNotFilledWithGrey) {
    const TempFolder folder;
    for (const bool progressive : {false, true})
        for (const bool arithmetic : {false, true}) {
            WriteJpeg(folder / "whole.jpg", 203, 117, {.progressive = progressive, .arithmetic = arithmetic});
            const std::string whole = ReadWholeFile(folder / "whole.jpg");
            // Without the mark at its end alone it is still whole; arithmetic coding cannot tell.
            for (std::size_t length = whole.size() - (arithmetic ? 1 : 3); length > 2;
                 length -= std::min(length, whole.size() / 40)) {
                SCOPED_TRACE(length);
                WriteWholeFile(folder / "cut.jpg", whole.substr(0, length));
                try {
                    DecodeWithEngine(folder / "cut.jpg");
                    ADD_FAILURE() << "was read";
                } catch (const ComponentError& error) {
                    EXPECT_EQ(error.Number(), ErrorNumber::ImageDamaged) << error.Description();
                }
            }
        }
}

} // namespace
