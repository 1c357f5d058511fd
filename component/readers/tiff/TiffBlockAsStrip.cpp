#include "component/readers/common/ImageError.h"
#include "component/readers/tiff/TiffBlockKinds.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

struct NumberTag {
    std::uint16_t number;
    std::uint16_t type; ///< TIFF_SHORT, TIFF_LONG or TIFF_LONG8
    std::vector<std::uint64_t> values;

    std::size_t ValueBytes() const { return type == TIFF_SHORT ? 2 : type == TIFF_LONG ? 4 : 8; }
    std::size_t Bytes() const { return ValueBytes() * values.size(); }
};

/// What stands before the one strip of a TIFF file of 64-bit offsets.
class StripFileHead {
public:
    explicit StripFileHead(bool isBigEndian) : isBigEndian_(isBigEndian) {}

    void Add(std::uint16_t number, std::uint16_t type, std::vector<std::uint64_t> values) {
        tags_.push_back({number, type, std::move(values)});
    }

    std::vector<std::uint8_t> Bytes() {
        Add(TIFFTAG_STRIPOFFSETS, TIFF_LONG8, {0});
        std::ranges::sort(tags_, {}, &NumberTag::number);
        std::size_t behindTags = DirectoryAt + 8 + tags_.size() * TagBytes + 8;
        std::size_t all = behindTags;
        for (const NumberTag& tag : tags_)
            all += tag.Bytes() > InTag ? tag.Bytes() : 0;
        std::ranges::find(tags_, TIFFTAG_STRIPOFFSETS, &NumberTag::number)->values = {all};
        PutHeader();
        for (const NumberTag& tag : tags_)
            PutTag(tag, behindTags);
        Put(0, 8); // no further page
        for (const NumberTag& tag : tags_)
            if (tag.Bytes() > InTag)
                PutValues(tag);
        return std::move(bytes_);
    }

private:
    static constexpr std::size_t DirectoryAt = 16;
    static constexpr std::size_t TagBytes = 20;
    static constexpr std::size_t InTag = 8; ///< bytes of values, longer ones stand elsewhere

    void Put(std::uint64_t value, std::size_t bytes) {
        for (std::size_t i = 0; i < bytes; ++i)
            bytes_.push_back(static_cast<std::uint8_t>(value >> 8 * (isBigEndian_ ? bytes - 1 - i : i)));
    }
    void PutValues(const NumberTag& tag) {
        for (const std::uint64_t value : tag.values)
            Put(value, tag.ValueBytes());
    }
    void PutHeader() {
        const char order = isBigEndian_ ? 'M' : 'I';
        bytes_.assign(2, static_cast<std::uint8_t>(order));
        Put(43, 2); // the version of 64-bit offsets
        Put(8, 2);
        Put(0, 2);
        Put(DirectoryAt, 8);
        Put(tags_.size(), 8);
    }
    void PutTag(const NumberTag& tag, std::size_t& elsewhere) {
        Put(tag.number, 2);
        Put(tag.type, 2);
        Put(tag.values.size(), 8);
        if (tag.Bytes() > InTag) {
            Put(elsewhere, 8);
            elsewhere += tag.Bytes();
            return;
        }
        PutValues(tag);
        bytes_.insert(bytes_.end(), InTag - tag.Bytes(), 0);
    }

    const bool isBigEndian_;
    std::vector<NumberTag> tags_;
    std::vector<std::uint8_t> bytes_;
};

std::uint16_t CompressionOf(const TiffFile& file) {
    return file.Tag16(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
}

std::uint16_t SampleFormatOf(const TiffLayout& layout) {
    switch (layout.number) {
    case TiffNumber::Signed:
        return SAMPLEFORMAT_INT;
    case TiffNumber::Float:
        return SAMPLEFORMAT_IEEEFP;
    case TiffNumber::Unsigned:
        break;
    }
    return SAMPLEFORMAT_UINT;
}

/// Colours mean nothing to a coder but to the one of logarithms.
std::uint16_t PhotometricOf(const TiffFile& file) {
    const std::uint16_t photometric = file.Tag16(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    const bool isKept = photometric == PHOTOMETRIC_LOGL || photometric == PHOTOMETRIC_LOGLUV;
    return isKept ? photometric : std::uint16_t{PHOTOMETRIC_MINISBLACK};
}

/// Tags that some coders have for themselves.
void AddCoderTags(const TiffFile& file, StripFileHead& head) {
    switch (CompressionOf(file)) {
    case COMPRESSION_CCITTFAX3:
        return head.Add(TIFFTAG_GROUP3OPTIONS, TIFF_LONG, {file.Tag32(TIFFTAG_GROUP3OPTIONS, 0)});
    case COMPRESSION_CCITTFAX4:
        return head.Add(TIFFTAG_GROUP4OPTIONS, TIFF_LONG, {file.Tag32(TIFFTAG_GROUP4OPTIONS, 0)});
    case COMPRESSION_LZW:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_ZSTD:
    case COMPRESSION_LZMA:
        return head.Add(TIFFTAG_PREDICTOR, TIFF_SHORT, {file.Tag16(TIFFTAG_PREDICTOR, PREDICTOR_NONE)});
    case COMPRESSION_LERC: {
        std::uint32_t count = 0;
        const std::uint32_t* parameters = nullptr;
        if (TIFFGetField(file.Handle(), TIFFTAG_LERC_PARAMETERS, &count, &parameters) == 1 &&
            parameters != nullptr)
            head.Add(TIFFTAG_LERC_PARAMETERS, TIFF_LONG, {parameters, parameters + count});
        return;
    }
    default:
        return;
    }
}

/// The block as a page of its own; its strip is as large as the block is stored.
std::vector<std::uint8_t> HeadOf(const TiffFile& file, const TiffLayout& layout, std::uint32_t block) {
    StripFileHead head(TIFFIsBigEndian(file.Handle()) != 0);
    const auto samples = static_cast<std::size_t>(layout.SamplesTogether());
    const auto rows =
        static_cast<std::uint64_t>(layout.tiled ? layout.blockHeight : TiffBlockRows(layout, block));
    head.Add(TIFFTAG_IMAGEWIDTH, TIFF_LONG, {static_cast<std::uint64_t>(layout.blockWidth)});
    head.Add(TIFFTAG_IMAGELENGTH, TIFF_LONG, {rows});
    head.Add(TIFFTAG_ROWSPERSTRIP, TIFF_LONG, {rows});
    head.Add(TIFFTAG_BITSPERSAMPLE, TIFF_SHORT, std::vector<std::uint64_t>(samples, layout.bits));
    head.Add(TIFFTAG_SAMPLEFORMAT, TIFF_SHORT, std::vector<std::uint64_t>(samples, SampleFormatOf(layout)));
    head.Add(TIFFTAG_SAMPLESPERPIXEL, TIFF_SHORT, {samples});
    head.Add(TIFFTAG_COMPRESSION, TIFF_SHORT, {CompressionOf(file)});
    head.Add(TIFFTAG_PHOTOMETRIC, TIFF_SHORT, {PhotometricOf(file)});
    head.Add(TIFFTAG_FILLORDER, TIFF_SHORT, {file.Tag16(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB)});
    head.Add(TIFFTAG_STRIPBYTECOUNTS, TIFF_LONG8, {TIFFGetStrileByteCount(file.Handle(), block)});
    AddCoderTags(file, head);
    return head.Bytes();
}

class BlockAsStrip : public TiffBlock {
public:
    BlockAsStrip(const TiffFile& file, const TiffLayout& layout, std::uint32_t block)
        : strip_(file, HeadOf(file, layout, block),
                 static_cast<std::int64_t>(TIFFGetStrileOffset(file.Handle(), block)),
                 static_cast<std::int64_t>(TIFFGetStrileByteCount(file.Handle(), block))),
          isWithoutRows_(CompressionOf(file) == COMPRESSION_JBIG) {
        AskTiffForBytes(strip_, CompressionOf(file));
        strip_.ForgetComplaints();
        if (TIFFScanlineSize64(strip_.Handle()) != static_cast<std::uint64_t>(TiffBlockRowBytes(layout)))
            ThrowDamaged(file.Path(), "the length of its rows contradicts itself");
    }

    void ReadRow(std::span<std::uint8_t> row) override {
        if (strip_.Pause())
            strip_.Pause()();
        if (isWithoutRows_ && row_ == 0)
            ReadWhole();
        if (isWithoutRows_)
            std::copy_n(whole_.begin() + std::ssize(row) * row_, row.size(), row.begin());
        else
            strip_.Check(TIFFReadScanline(strip_.Handle(), row.data(), row_) == 1);
        ++row_;
    }

private:
    void ReadWhole() {
        const auto bytes = static_cast<std::int64_t>(TIFFStripSize64(strip_.Handle()));
        whole_ = ImageBuffer(strip_.Path(), bytes);
        strip_.Check(TIFFReadEncodedStrip(strip_.Handle(), 0, whole_.data(), bytes) == bytes);
    }

    TiffFile strip_;
    const bool isWithoutRows_; ///< the coder gives the strip as a whole only
    std::vector<std::uint8_t> whole_;
    std::uint32_t row_ = 0;
};

/// What libtiff holds of a block beside its stored bytes: pixels, or room to turn them into others.
std::int64_t MemoryOfCoder(const TiffFile& file, const TiffLayout& layout) {
    // A tile may claim more rows than can be counted in bytes.
    const std::int64_t rows = std::min(layout.blockHeight, std::int64_t{1} << 30);
    switch (CompressionOf(file)) {
    case COMPRESSION_LERC:
        return TiffBlockRowBytes(layout) * rows;
    case COMPRESSION_JBIG:
        return 2 * TiffBlockRowBytes(layout) * rows;
    case COMPRESSION_SGILOG:
    case COMPRESSION_SGILOG24:
        return layout.blockWidth * rows * 4;
    case COMPRESSION_PIXARLOG:
        return TiffBlockRowBytes(layout) * rows * 2;
    default:
        return 0;
    }
}

} // namespace

std::int64_t MemoryOfBlockAsStrip(const TiffFile& file, const TiffLayout& layout) {
    return LongestStoredTiffBlock(file) + MemoryOfCoder(file, layout) + (std::int64_t{128} << 10);
}

std::unique_ptr<TiffBlock> OpenBlockAsStrip(TiffFile& file, const TiffLayout& layout, std::uint32_t block) {
    return std::make_unique<BlockAsStrip>(file, layout, block);
}
