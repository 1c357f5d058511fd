#include "component/readers/BmpHeader.h"

#include "component/readers/common/ImageError.h"

#include <algorithm>
#include <bit>
#include <string>

namespace {

// Microsoft's BITMAPFILEHEADER, BITMAPCOREHEADER and BITMAPINFOHEADER with its later versions; IBM's OS/2 2.x
// header has the same fields at the same places and may end after any of them from the depth on.
constexpr std::int64_t FileHeaderBytes = 14;
constexpr std::uint32_t CoreHeaderBytes = 12;
constexpr std::uint32_t ShortestOs2Header = 16;
constexpr std::uint32_t Os2HeaderBytes = 64;
constexpr std::uint32_t InfoHeaderBytes = 40;
constexpr std::uint32_t LongestHeader = 124;
/// Headers of these lengths and more hold the masks of red, green and blue, and that of alpha.
constexpr std::uint32_t HeaderWithMasks = 52;
constexpr std::uint32_t HeaderWithAlphaMask = 56;

/// Values of the compression field; OS/2 2.x gives 3 and 4 other meanings.
enum Compression : std::uint32_t {
    PlainRows = 0,
    RunLengths8 = 1,
    RunLengths4 = 2,
    BitFields = 3,
    Os2Huffman = 3,
    Os2RunLengths24 = 4,
    AlphaBitFields = 6,
};

/// Reads the header step by step; each step checks what the next ones rely on.
class HeaderReader {
public:
    explicit HeaderReader(ImageFile& file) : file_(file) {}

    BmpHeader Read() {
        ReadFields();
        ReadSize();
        ReadPacking();
        ReadMasks();
        ReadPalette();
        FindPixels();
        return header_;
    }

private:
    void ReadFields();
    void ReadSize();
    void ReadPacking();
    void ReadMasks();
    void ReadPalette();
    void FindPixels();

    bool IsCore() const { return headerBytes_ == CoreHeaderBytes; }
    bool IsOs2() const { return headerBytes_ < InfoHeaderBytes || headerBytes_ == Os2HeaderBytes; }

    /// Numbers of the info header by their offset in it; fields beyond a shorter header read as 0.
    std::uint32_t Short(std::size_t at) const {
        return fields_.at(at) | std::uint32_t{fields_.at(at + 1)} << 8;
    }
    std::uint32_t Long(std::size_t at) const { return Short(at) | Short(at + 2) << 16; }

    ImageFile& file_;
    BmpHeader header_;
    std::array<std::uint8_t, LongestHeader> fields_{};
    std::uint32_t headerBytes_ = 0;
    std::uint32_t compression_ = PlainRows;
    std::int64_t declaredFirstPixel_ = 0;
    std::int64_t end_ = 0; ///< of what was read so far, in bytes from the file's begin
};

void HeaderReader::ReadFields() {
    std::array<std::uint8_t, FileHeaderBytes + 4> begin{};
    file_.Seek(0);
    file_.Read(begin, "its header");
    const auto number = [&begin](std::size_t at) {
        return begin[at] | std::uint32_t{begin[at + 1]} << 8 | std::uint32_t{begin[at + 2]} << 16 |
               std::uint32_t{begin[at + 3]} << 24;
    };
    declaredFirstPixel_ = number(10);
    headerBytes_ = number(14);
    if (headerBytes_ != CoreHeaderBytes && (headerBytes_ < ShortestOs2Header || headerBytes_ > LongestHeader))
        ThrowNotReadable(file_.Path(),
                         "a BMP header of " + std::to_string(headerBytes_) + " bytes is not read");
    file_.Seek(FileHeaderBytes);
    file_.Read({fields_.data(), headerBytes_}, "its header");
    end_ = FileHeaderBytes + headerBytes_;
}

void HeaderReader::ReadSize() {
    std::int64_t width = 0, height = 0;
    if (IsCore()) {
        width = Short(4);
        height = Short(6);
        header_.bits = static_cast<int>(Short(10));
    } else {
        width = std::bit_cast<std::int32_t>(Long(4));
        height = std::bit_cast<std::int32_t>(Long(8));
        header_.bits = static_cast<int>(Short(14));
        compression_ = Long(16);
    }
    header_.downwards = height < 0;
    if (header_.downwards)
        height = -height;
    CheckImageSize(file_.Path(), width, height);
    header_.width = static_cast<std::int32_t>(width);
    header_.height = static_cast<std::int32_t>(height);
}

void HeaderReader::ReadPacking() {
    constexpr std::array Depths{1, 2, 4, 8, 16, 24, 32};
    const int bits = header_.bits;
    bool known = std::ranges::find(Depths, bits) != Depths.end();
    if (compression_ != PlainRows) {
        const bool runs = (compression_ == RunLengths8 && bits == 8) ||
                          (compression_ == RunLengths4 && bits == 4) ||
                          (IsOs2() && compression_ == Os2RunLengths24 && bits == 24);
        const bool fields = !IsOs2() && (compression_ == BitFields || compression_ == AlphaBitFields) &&
                            (bits == 16 || bits == 32);
        known = runs || fields;
        header_.packing = runs ? BmpPacking::RunLengths : BmpPacking::BitFields;
    }
    if (!known)
        ThrowNotReadable(file_.Path(), "a BMP of " + std::to_string(bits) +
                                           " bits a pixel with compression " + std::to_string(compression_) +
                                           " is not read");
}

void HeaderReader::ReadMasks() {
    if (header_.packing != BmpPacking::BitFields) {
        if (header_.bits == 16)
            header_.masks = {0x7C00, 0x03E0, 0x001F, 0};
        else
            header_.masks = {0xFF0000, 0x00FF00, 0x0000FF, 0};
        return;
    }
    const bool alphaFollows = compression_ == AlphaBitFields;
    if (headerBytes_ < HeaderWithMasks) { // the masks stand behind the header
        const std::size_t bytes = alphaFollows ? 16 : 12;
        file_.Read({fields_.data() + InfoHeaderBytes, bytes}, "its colour masks");
        end_ += static_cast<std::int64_t>(bytes);
    }
    const bool hasAlpha = headerBytes_ >= HeaderWithAlphaMask || alphaFollows;
    header_.masks = {Long(40), Long(44), Long(48), hasAlpha ? Long(52) : 0};
    for (std::uint32_t& mask : header_.masks) {
        if (header_.bits == 16)
            mask &= 0xFFFF;
        const std::uint32_t run = mask != 0 ? mask >> std::countr_zero(mask) : 0;
        if ((run & (run + 1)) != 0)
            ThrowDamaged(file_.Path(), "the bits of a colour do not lie side by side");
    }
}

void HeaderReader::ReadPalette() {
    if (header_.bits > 8)
        return;
    const std::size_t most = std::size_t{1} << header_.bits;
    const std::size_t entryBytes = IsCore() ? 3 : 4;
    std::size_t count = IsCore() || Long(32) == 0 ? most : std::min<std::size_t>(Long(32), most);
    // Some writers leave colours out; what stands where the pixels begin is no colour.
    if (declaredFirstPixel_ > end_)
        count = std::min(count, static_cast<std::size_t>(declaredFirstPixel_ - end_) / entryBytes);
    std::vector<std::uint8_t> bytes(count * entryBytes);
    file_.Seek(end_);
    file_.Read(bytes, "its palette");
    header_.palette.resize(most); // indices without a colour are black
    for (std::size_t index = 0; index < count; ++index) {
        const std::uint8_t* entry = bytes.data() + index * entryBytes;
        header_.palette[index] = {entry[2], entry[1], entry[0], 255};
    }
    end_ += static_cast<std::int64_t>(bytes.size());
}

void HeaderReader::FindPixels() {
    header_.firstPixel = declaredFirstPixel_ != 0 ? declaredFirstPixel_ : end_;
    if (header_.firstPixel >= file_.Size())
        ThrowDamaged(file_.Path(), "the file ends before its pixels");
}

} // namespace

BmpHeader ReadBmpHeader(ImageFile& file) {
    return HeaderReader(file).Read();
}
