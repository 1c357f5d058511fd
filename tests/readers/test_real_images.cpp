#include "tests/readers/ReferenceDecoder.h"

#include <algorithm>

namespace {

/// Image files of a kind in a folder and below, by name. Of maps that are kept as many tiles a few are
/// enough.
std::vector<std::filesystem::path> FilesOfKind(const std::filesystem::path& folder,
                                               const std::string& extension) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && entry.path().extension() == extension)
            files.push_back(entry.path());
    std::ranges::sort(files);
    constexpr std::ptrdiff_t Most = 25;
    if (std::ssize(files) > Most)
        for (std::ptrdiff_t at = 0; at < Most; ++at) // evenly over the list
            std::swap(files[static_cast<std::size_t>(at)],
                      files[static_cast<std::size_t>(at * std::ssize(files) / Most)]);
    files.resize(std::min<std::size_t>(files.size(), Most));
    return files;
}

/// Images that Debian packages install: maps of marble-qt-data and xplanet-images, pictures of
/// wx3.2-examples.
void ExpectAsReferences(const std::string& extension, std::size_t atLeast, Tolerance tolerance) {
    std::size_t count = 0;
    for (const char* folder : {"/usr/share/marble/data/maps", "/usr/share/xplanet/images",
                               "/usr/share/doc/wx3.2-examples/examples/samples"})
        for (const auto& file : FilesOfKind(folder, extension)) {
            SCOPED_TRACE(file);
            ++count;
            const RgbaImage image = DecodeWithEngine(file, 100);
            EXPECT_TRUE(SamePixels(image, DecodeWithPillow(file), tolerance)) << "Pillow";
            EXPECT_TRUE(SamePixels(image, DecodeWithImageMagick(file), tolerance)) << "ImageMagick";
        }
    EXPECT_GE(count, atLeast);
}

TEST(RealImages, OfKindBmpAreReadAsTheReferencesDo) {
    ExpectAsReferences(".bmp", 10, {0});
}
TEST(RealImages, OfKindGifAreReadAsTheReferencesDo) {
    ExpectAsReferences(".gif", 8, {0, true});
}
TEST(RealImages, OfKindJpegAreReadAsTheReferencesDo) {
    ExpectAsReferences(".jpg", 25, {2});
}
TEST(RealImages, OfKindPngAreReadAsTheReferencesDo) {
    ExpectAsReferences(".png", 30, {0, true});
}

} // namespace
