#include "component/readers/BmpReader.h"

#include "component/readers/BmpHeader.h"
#include "component/readers/BmpRunReader.h"
#include "component/readers/common/ImageError.h"
#include "component/readers/common/ImageFile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <vector>

namespace {

constexpr std::array<std::uint32_t, 4> MasksOfBytes{0xFF0000, 0x00FF00, 0x0000FF, 0};

PixelFormat FormatOf(const BmpHeader& header) {
    if (header.bits <= 8)
        return PixelFormat::Palette;
    return header.masks[3] != 0 ? PixelFormat::Rgba : PixelFormat::Rgb;
}

std::uint8_t Scale(std::uint64_t value, std::uint64_t largest) {
    return static_cast<std::uint8_t>((value * 255 + largest / 2) / largest);
}

/// Turns stored rows of a plain BMP file into rows of one of our pixel formats.
class BmpPixels {
public:
    explicit BmpPixels(const BmpHeader& header);

    PixelFormat Format() const { return format_; }
    /// `stored` holds header.UsedRowBytes() bytes, `row` gets width × BytesPerPixel(Format()).
    void Convert(const std::uint8_t* stored, std::uint8_t* row) const;

private:
    /// A colour's place in a pixel, and what its values become: round(v × 255 / largest v).
    struct Field {
        std::uint32_t mask = 0;
        int shift = 0;
        std::uint64_t largest = 0;
        std::vector<std::uint8_t> scaled; ///< for fields of up to 8 bits
    };

    static Field MakeField(std::uint32_t mask);
    static std::uint8_t Extract(const Field& field, std::uint32_t pixel);

    void UnpackIndices(const std::uint8_t* stored, std::uint8_t* row) const;
    void SwapColours(const std::uint8_t* stored, std::uint8_t* row) const;
    void ExtractFields(const std::uint8_t* stored, std::uint8_t* row) const;

    std::int32_t width_;
    int bits_;
    PixelFormat format_;
    bool inBytes_; ///< blue, green and red fill whole bytes, in this order
    std::array<Field, 4> fields_;
};

BmpPixels::BmpPixels(const BmpHeader& header)
    : width_(header.width), bits_(header.bits), format_(FormatOf(header)),
      inBytes_(header.bits >= 24 && header.masks == MasksOfBytes) {
    for (std::size_t colour = 0; colour < fields_.size(); ++colour)
        fields_[colour] = MakeField(header.masks[colour]);
}

BmpPixels::Field BmpPixels::MakeField(std::uint32_t mask) {
    Field field;
    if (mask == 0)
        return field;
    field.mask = mask;
    field.shift = std::countr_zero(mask);
    field.largest = mask >> field.shift;
    for (std::uint64_t value = 0; field.largest < 256 && value <= field.largest; ++value)
        field.scaled.push_back(Scale(value, field.largest));
    return field;
}

std::uint8_t BmpPixels::Extract(const Field& field, std::uint32_t pixel) {
    const std::uint32_t value = (pixel & field.mask) >> field.shift;
    if (!field.scaled.empty())
        return field.scaled[value];
    return field.largest != 0 ? Scale(value, field.largest) : std::uint8_t{0};
}

void BmpPixels::Convert(const std::uint8_t* stored, std::uint8_t* row) const {
    if (format_ == PixelFormat::Palette)
        UnpackIndices(stored, row);
    else if (inBytes_)
        SwapColours(stored, row);
    else
        ExtractFields(stored, row);
}

void BmpPixels::UnpackIndices(const std::uint8_t* stored, std::uint8_t* row) const {
    const int inByte = 8 / bits_;
    const int mask = (1 << bits_) - 1;
    for (std::int32_t column = 0; column < width_; ++column)
        row[column] = static_cast<std::uint8_t>(
            stored[column / inByte] >> (inByte - 1 - column % inByte) * bits_ & mask);
}

void BmpPixels::SwapColours(const std::uint8_t* stored, std::uint8_t* row) const {
    const int bytes = bits_ / 8;
    for (std::int32_t column = 0; column < width_; ++column, stored += bytes, row += 3) {
        row[0] = stored[2];
        row[1] = stored[1];
        row[2] = stored[0];
    }
}

void BmpPixels::ExtractFields(const std::uint8_t* stored, std::uint8_t* row) const {
    const int bytes = bits_ / 8;
    const auto channels = static_cast<std::size_t>(BytesPerPixel(format_));
    for (std::int32_t column = 0; column < width_; ++column, stored += bytes, row += channels) {
        std::uint32_t pixel = 0;
        for (int byte = bytes - 1; byte >= 0; --byte)
            pixel = pixel << 8 | stored[byte];
        for (std::size_t channel = 0; channel < channels; ++channel)
            row[channel] = Extract(fields_[channel], pixel);
    }
}

/// How many bytes of stored rows are read at once, unless a single row is longer.
constexpr std::int64_t BandBytes = std::int64_t{1} << 20;

/// Rows that are not run-length coded. Of a file stored upwards the rows are fetched from its end.
class BmpReader : public RowReader {
public:
    BmpReader(ImageFile file, const BmpHeader& header);
    void ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) override;

private:
    void ReadBand(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count);

    ImageFile file_;
    BmpHeader header_;
    BmpPixels pixels_;
    std::int32_t bandRows_;
    std::vector<std::uint8_t> band_;
    std::int32_t row_ = 0;
};

BmpReader::BmpReader(ImageFile file, const BmpHeader& header)
    : file_(std::move(file)), header_(header), pixels_(header) {
    // Padding behind the last stored row is left out by some writers.
    const std::int64_t needed = header.StoredRowBytes() * (header.height - 1) + header.UsedRowBytes();
    if (needed > file_.Size() - header.firstPixel)
        ThrowDamaged(file_.Path(), "the file is too short for " + std::to_string(header.width) + " x " +
                                       std::to_string(header.height) + " pixels");
    info_.width = header.width;
    info_.height = header.height;
    info_.format = pixels_.Format();
    info_.palette = header.palette;
    const std::int64_t rowsInBand = BandBytes / header.StoredRowBytes();
    bandRows_ =
        static_cast<std::int32_t>(std::clamp(rowsInBand, std::int64_t{1}, std::int64_t{header.height}));
    band_ = ImageBuffer(file_.Path(), bandRows_ * header.StoredRowBytes());
}

void BmpReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    while (count > 0) {
        const std::int32_t part = std::min(count, bandRows_);
        ReadBand(rows, stride, part);
        rows += stride * part;
        row_ += part;
        count -= part;
    }
}

void BmpReader::ReadBand(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    const std::int32_t firstStored = header_.downwards ? row_ : header_.height - row_ - count;
    const std::int64_t storedBytes = header_.StoredRowBytes();
    const std::int64_t bytes = storedBytes * (count - 1) + header_.UsedRowBytes();
    file_.Seek(header_.firstPixel + firstStored * storedBytes);
    if (file_.ReadSome({band_.data(), static_cast<std::size_t>(bytes)}) < static_cast<std::size_t>(bytes))
        ThrowEndsBeforeRow(file_.Path(), row_);
    for (std::int32_t row = 0; row < count; ++row, rows += stride) {
        const std::int32_t stored = header_.downwards ? row : count - 1 - row;
        pixels_.Convert(band_.data() + stored * storedBytes, rows);
    }
}

} // namespace

std::unique_ptr<RowReader> OpenBmp(const std::filesystem::path& file,
                                   const std::filesystem::path& spoolFolder) {
    ImageFile opened(file);
    const BmpHeader header = ReadBmpHeader(opened);
    if (header.packing == BmpPacking::RunLengths)
        return std::make_unique<BmpRunReader>(std::move(opened), header, spoolFolder);
    return std::make_unique<BmpReader>(std::move(opened), header);
}
