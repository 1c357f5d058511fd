#include "component/readers/common/ExifOrientation.h"

#include <cstddef>

namespace {

constexpr std::uint32_t OrientationTag = 0x0112;
constexpr std::uint32_t ShortType = 3;
constexpr std::size_t EntryBytes = 12;

/// Numbers in the byte order that the data declare; 0 beyond their end, which no valid field holds.
class ExifNumbers {
public:
    explicit ExifNumbers(std::span<const std::uint8_t> exif)
        : exif_(exif), bigEndian_(!exif.empty() && exif[0] == 'M') {}

    std::uint32_t Short(std::size_t at) const { return Number(at, 2); }
    std::uint32_t Long(std::size_t at) const { return Number(at, 4); }

private:
    std::uint32_t Number(std::size_t at, std::size_t bytes) const {
        if (at > exif_.size() || exif_.size() - at < bytes)
            return 0;
        std::uint32_t value = 0;
        for (std::size_t byte = 0; byte < bytes; ++byte)
            value = value << 8 | exif_[at + (bigEndian_ ? byte : bytes - 1 - byte)];
        return value;
    }

    std::span<const std::uint8_t> exif_;
    bool bigEndian_;
};

} // namespace

Orientation ExifOrientation(std::span<const std::uint8_t> exif) {
    if (exif.size() < 8 || exif[0] != exif[1] || (exif[0] != 'I' && exif[0] != 'M'))
        return Orientation::TopLeft;
    const ExifNumbers numbers(exif);
    const std::size_t directory = numbers.Long(4);
    const std::uint32_t entries = numbers.Short(directory);
    for (std::uint32_t entry = 0; entry < entries; ++entry) {
        const std::size_t at = directory + 2 + entry * EntryBytes;
        if (numbers.Short(at) != OrientationTag)
            continue;
        const std::uint32_t value = numbers.Short(at + 2) == ShortType ? numbers.Short(at + 8) : 0;
        return value >= 1 && value <= 8 ? static_cast<Orientation>(value) : Orientation::TopLeft;
    }
    return Orientation::TopLeft;
}
