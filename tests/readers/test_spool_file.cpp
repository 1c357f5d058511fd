// The temporary file behind images that cannot be read row by row.

#include "component/readers/OpenImage.h"
#include "component/readers/common/SpoolFile.h"
#include "tests/readers/JpegWriter.h"
#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <random>
#include <string>

namespace {

using Pixels = std::vector<std::uint8_t>;

/// This process's open spool files: by which way they can be read, and where they lie.
struct OpenSpool {
    std::string link;
    std::filesystem::path place;
};

std::vector<OpenSpool> OpenSpools() {
    std::vector<OpenSpool> spools;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        std::error_code none;
        const std::filesystem::path place = std::filesystem::read_symlink(link, none);
        if (place.filename().string().starts_with("quorvant-image-"))
            spools.push_back({link, place});
    }
    return spools;
}

std::vector<std::filesystem::path> FoldersOfSpools() {
    std::vector<std::filesystem::path> folders;
    for (const OpenSpool& spool : OpenSpools())
        folders.push_back(spool.place.parent_path());
    return folders;
}

/// What lies on the disk of this process's open spool files.
std::string BytesOnDisk() {
    std::string bytes;
    for (const OpenSpool& spool : OpenSpools())
        bytes += ReadWholeFile(spool.link);
    return bytes;
}

Pixels Noise(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Pixels noise(size);
    for (std::uint8_t& byte : noise)
        byte = static_cast<std::uint8_t>(random());
    return noise;
}

} // namespace

TEST(SpoolFiles, LeaveNothingReadableOnTheDisk) {
    const std::string secret = "the harbour's soundings";
    const TempFolder folder;
    SpoolFile spool(folder.Path());
    for (const std::int64_t offset : {0, 5000, 100000})
        spool.Write(offset, {reinterpret_cast<const std::uint8_t*>(secret.data()), secret.size()});
    const std::string bytes = BytesOnDisk();
    ASSERT_GT(bytes.size(), 100000U);
    EXPECT_EQ(bytes.find(secret.substr(0, 8)), std::string::npos);
    Pixels read(secret.size());
    spool.Read(5000, read);
    EXPECT_EQ(std::string(read.begin(), read.end()), secret);
}

TEST(SpoolFiles, GiveBackWhatWasWrittenInAnyOrderAndZerosElsewhere) {
    Pixels expected(3 << 20);
    const TempFolder folder;
    SpoolFile spool(folder.Path());
    std::mt19937 random(3);
    for (int i = 0; i < 400; ++i) {
        const std::size_t length = 1 + random() % (i % 20 == 0 ? 300000 : 700);
        const std::size_t offset = random() % (expected.size() - length);
        const Pixels piece = Noise(length, static_cast<unsigned>(random()));
        std::copy(piece.begin(), piece.end(), expected.begin() + static_cast<std::ptrdiff_t>(offset));
        spool.Write(static_cast<std::int64_t>(offset), piece);
    }
    Pixels whole(expected.size(), 7);
    spool.Read(0, whole);
    EXPECT_TRUE(whole == expected);
    for (int i = 0; i < 400; ++i) {
        const std::size_t length = 1 + random() % 20000, offset = random() % (expected.size() - length);
        Pixels part(length, 7);
        spool.Read(static_cast<std::int64_t>(offset), part);
        ASSERT_TRUE(
            std::equal(part.begin(), part.end(), expected.begin() + static_cast<std::ptrdiff_t>(offset)))
            << offset << " + " << length;
    }
}

TEST(SpoolFiles, ReadAsZerosWhereNothingWasWritten) {
    const TempFolder folder;
    SpoolFile spool(folder.Path());
    spool.Write(100, Noise(50, 1));
    Pixels read(40, 7);
    for (const std::int64_t offset : {0, 60, 150, 4096, 1000000}) {
        spool.Read(offset, read);
        EXPECT_EQ(read, Pixels(40)) << offset;
    }
}

TEST(SpoolFiles, LieInTheFolderThatIsNamed) {
    const TempFolder folder;
    const SpoolFile spool(folder.Path());
    EXPECT_THAT(FoldersOfSpools(), testing::ElementsAre(folder.Path()));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path())) << "without a name";
}

TEST(SpoolFiles, LieInTheUsersTemporaryFolderWhereNoneIsNamedOrNoneCanBeMadeThere) {
    const TempFolder folder;
    const ScopedVariable temporary("TMPDIR", folder.Path().string());
    WriteWholeFile(folder / "file", "no folder");
    for (const std::filesystem::path& named :
         {std::filesystem::path(), folder / "missing", folder / "file"}) {
        const SpoolFile spool(named);
        EXPECT_THAT(FoldersOfSpools(), testing::ElementsAre(folder.Path())) << named;
    }
}

TEST(SpoolFiles, OfEveryKindOfImageLieInTheFolderThatIsNamed) {
    const TempFolder folder;
    for (const char* const theme : {"png", "gif", "bmp", "turned"})
        RunScript("make_images.py", {theme, folder.Path().string()});
    std::filesystem::create_directory(folder / "tiffs");
    RunScript("make_tiffs.py", {"turned", (folder / "tiffs").string()});
    WriteJpeg(folder / "large.jpg", 4303, 4101,
              {.sampling = {{1, 1}, {1, 1}, {1, 1}}, .quality = 40, .progressive = true});
    WriteJpeg(
        folder / "turned.jpg", 45, 31,
        {.exif = std::string("Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0", 32)});
    std::filesystem::create_directory(folder / "spool");
    for (const char* const name :
         {"type-2-8-interlaced.png", "interlaced-37.gif", "rle-runs.bmp", "rgb-3.png", "rgb-6.png",
          "tiffs/turned-3.tif", "tiffs/turned-6.tif", "large.jpg", "turned.jpg"}) {
        const auto reader = OpenImage(folder / name, folder / "spool");
        Pixels row(static_cast<std::size_t>(reader->Info().width) * 4);
        reader->ReadRows(row.data(), 0, 1);
        EXPECT_THAT(FoldersOfSpools(), testing::ElementsAre(folder / "spool")) << name;
    }
}
