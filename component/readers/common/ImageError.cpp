#include "component/readers/common/ImageError.h"

#include "component/tiles/RowReader.h"

#include <algorithm>
#include <new>
#include <stdexcept>

void ThrowImageError(ErrorNumber number, const std::filesystem::path& path, const std::string& reason) {
    throw ComponentError(number, "The image '" + path.string() + "' could not be read: " + reason + ".");
}

void ThrowDamaged(const std::filesystem::path& path, const std::string& reason) {
    ThrowImageError(ErrorNumber::ImageDamaged, path, reason);
}

void ThrowNotReadable(const std::filesystem::path& path, const std::string& reason) {
    ThrowImageError(ErrorNumber::ImageNotReadable, path, reason);
}

void ThrowEndsBeforeRow(const std::filesystem::path& path, std::int64_t row) {
    ThrowDamaged(path, "the file ends before row " + std::to_string(row + 1));
}

void CheckImageSize(const std::filesystem::path& path, std::int64_t width, std::int64_t height) {
    const std::string size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
    if (width < 1 || height < 1)
        ThrowDamaged(path, "it claims to have " + size);
    // Both sides are below 2^31 where they are multiplied.
    if (width > MaxImageSide || height > MaxImageSide || width * height > MaxImagePixels)
        ThrowImageError(ErrorNumber::ImageTooLarge, path, size + " are more than the program accepts");
}

void CheckPixelsPerByte(const std::filesystem::path& path, std::int64_t pixels, std::int64_t fileSize,
                        std::int64_t alwaysAccepted) {
    if (pixels > alwaysAccepted && pixels / MostPixelsPerByte > fileSize)
        ThrowImageError(ErrorNumber::ImageTooLarge, path,
                        std::to_string(pixels) + " pixels in a file of " + std::to_string(fileSize) +
                            " bytes are more than the program accepts");
}

std::vector<std::uint8_t> ImageBuffer(const std::filesystem::path& path, std::int64_t bytes) {
    try {
        return std::vector<std::uint8_t>(static_cast<std::size_t>(std::max(bytes, std::int64_t{0})));
    } catch (const std::bad_alloc&) {
        ThrowImageError(ErrorNumber::OutOfMemory, path, "there is not enough memory for its rows");
    } catch (const std::length_error&) {
        ThrowImageError(ErrorNumber::OutOfMemory, path, "there is not enough memory for its rows");
    }
}
