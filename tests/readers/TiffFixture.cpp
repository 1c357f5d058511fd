#include "tests/readers/TiffFixture.h"

#include "component/readers/tiff/TiffReader.h"

#include <gtest/gtest.h>

#include <algorithm>

void CheckTiffTheme(const std::string& theme, Tolerance tolerance) {
    const TempFolder folder;
    RunScript("make_tiffs.py", {theme, folder.Path().string()});
    for (const auto& image : ImagesWithTruth(folder.Path())) {
        SCOPED_TRACE(image.filename());
        try {
            EXPECT_TRUE(SamePixels(DecodeWithEngine(image), ReadTruth(image), tolerance));
        } catch (const ComponentError& error) {
            ADD_FAILURE() << error.what();
        }
    }
}

std::optional<ErrorNumber> TiffErrorOf(const std::filesystem::path& file) {
    try {
        const auto reader = OpenTiff(file, {});
        // A damaged file may claim any size; rows enough to come by its damage.
        const ImageInfo& info = reader->Info();
        const std::int64_t rowBytes = std::int64_t{info.width} * BytesPerPixel(info.format);
        std::vector<std::uint8_t> row(static_cast<std::size_t>(rowBytes));
        for (std::int32_t y = 0; y < std::min(info.height, 20000); ++y)
            reader->ReadRows(row.data(), static_cast<std::ptrdiff_t>(rowBytes), 1);
    } catch (const ComponentError& error) {
        EXPECT_NE(error.Description().find(file.filename().string()), std::string::npos)
            << error.Description();
        return error.Number();
    }
    return std::nullopt;
}

std::string TiffSentenceOf(const std::filesystem::path& file) {
    try {
        ReadAllRows(*OpenTiff(file, {}));
    } catch (const ComponentError& error) {
        return error.Description();
    }
    return {};
}

bool IsOrderly(std::optional<ErrorNumber> error) {
    return !error || error == ErrorNumber::ImageDamaged || error == ErrorNumber::ImageNotReadable ||
           error == ErrorNumber::ImageTooLarge || error == ErrorNumber::OutOfMemory;
}

std::string TiffOf(const std::vector<Tag>& tags, std::uint32_t nextDirectory, std::size_t dataBytes) {
    std::string file("II*\0\x08\0\0\0", 8);
    const auto put = [&file](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            file.push_back(static_cast<char>(value >> (8 * i)));
    };
    put(static_cast<std::uint32_t>(tags.size()), 2);
    for (const Tag& tag : tags) {
        put(tag.number, 2);
        put(4, 2);
        put(1, 4);
        put(tag.value, 4);
    }
    put(nextDirectory, 4);
    return file + std::string(dataBytes, '\x55');
}
