// The temporary file behind images that cannot be read row by row.

#include "component/readers/common/SpoolFile.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <random>
#include <string>

namespace {

using Pixels = std::vector<std::uint8_t>;

/// What lies on the disk of this process's open spool files.
std::string BytesOnDisk() {
    std::string bytes;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        std::error_code none;
        if (std::filesystem::read_symlink(link, none).string().find("quorvant-image-") != std::string::npos)
            bytes += ReadWholeFile(link);
    }
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
    SpoolFile spool;
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
    SpoolFile spool;
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
    SpoolFile spool;
    spool.Write(100, Noise(50, 1));
    Pixels read(40, 7);
    for (const std::int64_t offset : {0, 60, 150, 4096, 1000000}) {
        spool.Read(offset, read);
        EXPECT_EQ(read, Pixels(40)) << offset;
    }
}
