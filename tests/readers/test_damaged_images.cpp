#include "base/ComponentError.h"
#include "component/readers/OpenImage.h"
#include "tests/readers/JpegWriter.h"
#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <set>

namespace {

using namespace std::string_literals;

/// What came of an attempt to read a damaged file: pixels, or an error.
struct Attempt {
    std::optional<RgbaImage> image;
    ErrorNumber error = ErrorNumber::Failed;
    std::string sentence;
};

constexpr std::int64_t MostBytesToDecode = 32 << 20;

/// Decodes the file; of one that a flipped bit has made huge only as many rows as the test can afford.
Attempt TryToRead(const std::filesystem::path& file) {
    Attempt attempt;
    try {
        const auto reader = OpenImage(file);
        const ImageInfo& info = reader->Info();
        const std::int64_t rowBytes = std::int64_t{info.width} * BytesPerPixel(info.format);
        EXPECT_TRUE(info.width > 0 && info.height > 0);
        EXPECT_EQ(info.palette.empty(), info.format != PixelFormat::Palette);
        if (rowBytes * info.height <= MostBytesToDecode) {
            attempt.image = ReadAllRows(*reader);
        } else if (rowBytes <= MostBytesToDecode) {
            std::vector<std::uint8_t> row(static_cast<std::size_t>(rowBytes));
            reader->ReadRows(row.data(), rowBytes, 1);
        }
    } catch (const ComponentError& error) {
        attempt.error = error.Number();
        attempt.sentence = error.Description();
    }
    return attempt;
}

bool IsImageError(ErrorNumber number) {
    return number == ErrorNumber::ImageDamaged || number == ErrorNumber::ImageNotReadable ||
           number == ErrorNumber::ImageTooLarge;
}

/// Small images, one of each way through the readers.
std::vector<std::filesystem::path> SmallImages(const TempFolder& folder) {
    for (const char* theme : {"bmp", "gif", "png"})
        RunScript("make_images.py", {theme, folder.Path().string()});
    WriteJpeg(folder / "sequential.jpg", 40, 30, {});
    WriteJpeg(folder / "progressive.jpg", 40, 30, {.progressive = true});
    WriteJpeg(folder / "arithmetic.jpg", 40, 30, {.progressive = true, .arithmetic = true});
    WriteJpeg(folder / "inks.jpg", 40, 30, {.stored = JCS_YCCK, .restartRows = 1});
    std::vector<std::filesystem::path> images;
    for (const char* name : {"palette-4-core.bmp",
                             "palette-8-os2-64.bmp",
                             "rgb-24-info.bmp",
                             "fields-16-4444-v3.bmp",
                             "fields-32-8888-v5-other-order.bmp",
                             "rle-runs.bmp",
                             "rle-literals-4.bmp",
                             "rle-24.bmp",
                             "animation.gif",
                             "interlaced-9.gif",
                             "palette-own.gif",
                             "screen-within-corner.gif",
                             "type-0-2-key.png",
                             "type-6-16-interlaced.png",
                             "palette-4-12-5-interlaced.png",
                             "with-notes.png",
                             "sequential.jpg",
                             "progressive.jpg",
                             "arithmetic.jpg",
                             "inks.jpg"})
        images.push_back(folder / name);
    return images;
}

TEST(DamagedImages, CutAnywhereAreDamagedOrStillWhole) {
    const TempFolder folder;
    for (const auto& image : SmallImages(folder)) {
        SCOPED_TRACE(image.filename());
        const std::string whole = ReadWholeFile(image);
        const RgbaImage pixels = DecodeWithEngine(image);
        const auto cut = folder / ("cut" + image.extension().string());
        const std::size_t step = std::max<std::size_t>(whole.size() / 40, 1);
        for (std::size_t length = 8; length < whole.size(); length += length < 80 ? 1 : step) {
            SCOPED_TRACE(length);
            WriteWholeFile(cut, whole.substr(0, length));
            const Attempt attempt = TryToRead(cut);
            if (attempt.image)
                EXPECT_TRUE(SamePixels(*attempt.image, pixels));
            else
                EXPECT_EQ(attempt.error, ErrorNumber::ImageDamaged) << attempt.sentence;
        }
    }
}

TEST(DamagedImages, WithAnyHeaderByteChangedGiveAnErrorOrPixels) {
    const TempFolder folder;
    for (const auto& image : SmallImages(folder)) {
        SCOPED_TRACE(image.filename());
        const std::string whole = ReadWholeFile(image);
        const auto changed = folder / ("changed" + image.extension().string());
        for (std::size_t at = 0; at < std::min<std::size_t>(whole.size(), 150); ++at)
            for (const int bits : {0x01, 0xFF}) {
                SCOPED_TRACE(at);
                std::string content = whole;
                content[at] = static_cast<char>(content[at] ^ bits);
                WriteWholeFile(changed, content);
                const Attempt attempt = TryToRead(changed);
                EXPECT_TRUE(attempt.error == ErrorNumber::Failed || IsImageError(attempt.error))
                    << attempt.sentence;
            }
    }
}

TEST(DamagedImages, PngWithAnyByteChangedIsNeverShown) {
    const TempFolder folder;
    RunScript("make_images.py", {"png", folder.Path().string()});
    for (const char* name : {"palette-4-12-5.png", "type-0-8-interlaced-key.png"}) {
        SCOPED_TRACE(name);
        const std::string whole = ReadWholeFile(folder / name);
        for (std::size_t at = 0; at < whole.size(); ++at) {
            SCOPED_TRACE(at);
            std::string content = whole;
            content[at] = static_cast<char>(content[at] ^ 0x10);
            WriteWholeFile(folder / "changed.png", content);
            const Attempt attempt = TryToRead(folder / "changed.png");
            EXPECT_FALSE(attempt.image);
            EXPECT_TRUE(IsImageError(attempt.error)) << attempt.sentence;
        }
    }
}

TEST(DamagedImages, SayBeforeWhichRowTheFileEnds) {
    const TempFolder folder;
    const auto cut = folder / "cut.dat";
    for (const auto& image : SmallImages(folder)) {
        const std::string name = image.filename().string();
        if (name != "palette-own.gif" && name != "with-notes.png" && name != "inks.jpg")
            continue;
        SCOPED_TRACE(name);
        const std::string whole = ReadWholeFile(image);
        WriteWholeFile(cut, whole.substr(0, whole.size() * 9 / 10));
        const Attempt attempt = TryToRead(cut);
        EXPECT_NE(attempt.sentence.find("The image '" + cut.string() + "' could not be read: "),
                  std::string::npos);
        EXPECT_NE(attempt.sentence.find("the file ends before row "), std::string::npos) << attempt.sentence;
    }
}

TEST(HugeImages, ThatAFewBytesClaimAreRefusedAtOnce) {
    const TempFolder folder;
    RunScript("make_images.py", {"bombs", folder.Path().string()});
    std::size_t found = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
        SCOPED_TRACE(entry.path().filename());
        ++found;
        try {
            OpenImage(entry.path());
            ADD_FAILURE() << "was opened";
        } catch (const ComponentError& error) {
            // The name begins with what is to be said.
            const bool large = entry.path().filename().string().starts_with("large");
            EXPECT_EQ(error.Number(), large ? ErrorNumber::ImageTooLarge : ErrorNumber::ImageDamaged)
                << error.Description();
        }
    }
    EXPECT_GE(found, 10U);
}

TEST(HugeImages, ThatAreHonestlyWhiteAreRead) {
    const TempFolder folder;
    RunScript("make_images.py", {"white", folder.Path().string()});
    for (const char* kind : {"png", "gif", "jpg", "bmp"}) {
        SCOPED_TRACE(kind);
        const auto reader = OpenImage(folder / ("white."s + kind));
        EXPECT_EQ(reader->Info().width, 8300);
        std::vector<std::uint8_t> rows(8300 * 100);
        reader->ReadRows(rows.data(), 8300, 100);
        EXPECT_EQ(std::set<std::uint8_t>(rows.begin(), rows.end()).size(), 1U);
    }
}

/// While it lives, no file of this process grows beyond so many bytes, as on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

TEST(TemporaryFiles, ThatFindTheDiskFullSaySo) {
    const TempFolder folder;
    for (const char* theme : {"bmp", "gif", "png", "turned"})
        RunScript("make_images.py", {theme, folder.Path().string()});
    for (const char* name :
         {"rle-runs.bmp", "interlaced-37.gif", "type-2-8-interlaced.png", "rgb-3.png", "rgb-5.png"}) {
        SCOPED_TRACE(name);
        Attempt attempt;
        {
            const FileSizeLimit limit(10);
            attempt = TryToRead(folder / name);
        }
        EXPECT_EQ(attempt.error, ErrorNumber::DiskFull) << attempt.sentence;
        EXPECT_TRUE(TryToRead(folder / name).image) << "after the disk has space again";
    }
}

TEST(TemporaryFiles, OfAProgressiveJpegThatFindTheDiskFullSaySo) {
    const TempFolder folder;
    WriteJpeg(folder / "large.jpg", 4303, 4101, {.stored = JCS_GRAYSCALE, .progressive = true});
    const FileSizeLimit limit(1 << 20);
    EXPECT_EQ(TryToRead(folder / "large.jpg").error, ErrorNumber::DiskFull);
}

TEST(TemporaryFiles, WithoutAFolderForThemSaySo) {
    const TempFolder folder;
    RunScript("make_images.py", {"turned", folder.Path().string()});
    setenv("TMPDIR", (folder / "none").c_str(), 1);
    const Attempt attempt = TryToRead(folder / "rgb-3.png");
    unsetenv("TMPDIR");
    EXPECT_EQ(attempt.error, ErrorNumber::FileNotWritable) << attempt.sentence;
}

} // namespace
