// An image file of any kind: opened and read to its last row.

#include "base/ComponentError.h"
#include "component/readers/OpenImage.h"
#include "fuzz/FuzzInput.h"

namespace {

constexpr std::int64_t MostPixels = 1 << 22;
constexpr std::int32_t Band = 16;

void ReadAll(RowReader& reader) {
    const ImageInfo& info = reader.Info();
    if (std::int64_t{info.width} * info.height > MostPixels)
        return;
    const std::ptrdiff_t stride = std::ptrdiff_t{info.width} * BytesPerPixel(info.format);
    std::vector<std::uint8_t> rows(static_cast<std::size_t>(stride * Band));
    for (std::int32_t row = 0; row < info.height; row += Band)
        reader.ReadRows(rows.data(), stride, std::min(Band, info.height - row));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzFile file;
    try {
        ReadAll(*OpenImage(file.Write({data, size})));
    } catch (const ComponentError&) {
        // The orderly answer.
    }
    return 0;
}
