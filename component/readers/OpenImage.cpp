#include "component/readers/OpenImage.h"
#include "component/readers/BmpReader.h"
#include "component/readers/GifReader.h"
#include "component/readers/JpegReader.h"
#include "component/readers/PngReader.h"
#include "component/readers/common/ImageError.h"
#include "component/readers/common/ImageFile.h"
#include "component/readers/tiff/TiffReader.h"

#include <algorithm>
#include <array>
#include <new>
#include <span>
#include <string_view>

namespace {

using namespace std::string_view_literals;

/// A kind of image file: how its first bytes read, and who reads the rest.
struct ImageKind {
    std::string_view firstBytes;
    std::unique_ptr<RowReader> (*open)(const std::filesystem::path& file,
                                       const std::filesystem::path& spoolFolder);
};

constexpr std::array Kinds{
    ImageKind{"BM"sv, OpenBmp},
    ImageKind{"GIF87a"sv, OpenGif},
    ImageKind{"GIF89a"sv, OpenGif},
    ImageKind{"\xFF\xD8\xFF"sv, OpenJpeg},
    ImageKind{"\x89PNG\r\n\x1A\n"sv, OpenPng},
    ImageKind{"II*\0"sv, OpenTiff},
    ImageKind{"MM\0*"sv, OpenTiff},
    ImageKind{"II+\0"sv, OpenTiff}, // BigTIFF
    ImageKind{"MM\0+"sv, OpenTiff},
};

constexpr std::size_t LongestFirstBytes = 8;

const ImageKind& RecogniseKind(const std::filesystem::path& path) {
    std::array<std::uint8_t, LongestFirstBytes> bytes{};
    const std::size_t length = ImageFile(path).ReadSome(bytes);
    const std::string_view begin(reinterpret_cast<const char*>(bytes.data()), length);
    const auto kind = std::ranges::find_if(
        Kinds, [begin](const ImageKind& candidate) { return begin.starts_with(candidate.firstBytes); });
    if (kind == Kinds.end())
        ThrowNotReadable(path, "it is no BMP, GIF, JPEG, TIFF or PNG image");
    return *kind;
}

} // namespace

std::unique_ptr<RowReader> OpenImage(const std::filesystem::path& file,
                                     const std::filesystem::path& spoolFolder) {
    try {
        return RecogniseKind(file).open(file, spoolFolder);
    } catch (const std::bad_alloc&) {
        ThrowImageError(ErrorNumber::OutOfMemory, file, "there is not enough memory");
    }
}
