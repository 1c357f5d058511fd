#include "component/ImageWriter.h"

#include "base/ComponentError.h"
#include "component/Bitmap.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::uint32_t Opaque = 255;

/// A colour divided by its alpha, to the nearest.
std::uint8_t Unmultiplied(std::uint32_t colour, std::uint32_t alpha) {
    if (alpha == 0)
        return 0;
    return static_cast<std::uint8_t>(std::min(Opaque, (colour * Opaque + alpha / 2) / alpha));
}

void FillRow(const std::uint32_t* pixels, std::vector<std::uint8_t>& row) {
    for (std::size_t x = 0; 4 * x < row.size(); ++x) {
        const std::uint32_t word = pixels[x], alpha = word >> 24;
        row[4 * x] = Unmultiplied((word >> 16) & 255, alpha);
        row[4 * x + 1] = Unmultiplied((word >> 8) & 255, alpha);
        row[4 * x + 2] = Unmultiplied(word & 255, alpha);
        row[4 * x + 3] = static_cast<std::uint8_t>(alpha);
    }
}

} // namespace

void WriteBitmapAsPng(const AtlavexImage* image, const std::filesystem::path& file) {
    const Bitmap* bitmap = image == nullptr ? nullptr : image->Pixels();
    if (bitmap == nullptr)
        throw ComponentError(ErrorNumber::Failed, "There are no pixels to write to '" + file.string() + "'.");
    NewFile out(file);
    const auto writer = MakePngWriter(out, {bitmap->width, bitmap->height, PixelFormat::Rgba, {}});
    std::vector<std::uint8_t> row(4 * static_cast<std::size_t>(bitmap->width));
    for (std::int32_t y = 0; y < bitmap->height; ++y) {
        FillRow(bitmap->Row(y), row);
        writer->WriteRows(row, 1);
    }
    writer->Finish();
    out.Commit();
}
