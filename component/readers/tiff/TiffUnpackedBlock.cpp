#include "component/readers/tiff/TiffBlockKinds.h"
#include "component/readers/tiff/TiffUnpacker.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace {

bool HasPredictor(std::uint16_t compression) {
    return compression == COMPRESSION_LZW || compression == COMPRESSION_DEFLATE ||
           compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_ZSTD ||
           compression == COMPRESSION_LZMA;
}

/// How samples are stored that the coder's own tag tells of.
std::uint16_t PredictorOf(const TiffFile& file) {
    return HasPredictor(file.Tag16(TIFFTAG_COMPRESSION, COMPRESSION_NONE))
               ? file.Tag16(TIFFTAG_PREDICTOR, PREDICTOR_NONE)
               : std::uint16_t{PREDICTOR_NONE};
}

bool AreWholeBytes(std::uint16_t bits) {
    return bits == 8 || bits == 16 || bits == 24 || bits == 32 || bits == 64;
}

bool IsPredictorKnown(std::uint16_t predictor, const TiffLayout& layout) {
    switch (predictor) {
    case PREDICTOR_NONE:
        return true;
    case PREDICTOR_HORIZONTAL:
        return AreWholeBytes(layout.bits) && layout.bits != 24;
    case PREDICTOR_FLOATINGPOINT:
        return AreWholeBytes(layout.bits) && layout.number == TiffNumber::Float;
    default:
        return false;
    }
}

void SwapBytes(std::span<std::uint8_t> row, std::size_t sampleBytes) {
    for (std::size_t at = 0; at + sampleBytes <= row.size(); at += sampleBytes)
        std::reverse(row.data() + at, row.data() + at + sampleBytes);
}

template <class Number>
void AddUp(std::span<std::uint8_t> row, std::size_t samples) {
    const std::size_t step = samples * sizeof(Number);
    for (std::size_t at = step; at + sizeof(Number) <= row.size(); at += sizeof(Number)) {
        Number before = 0, value = 0;
        std::memcpy(&before, row.data() + at - step, sizeof(Number));
        std::memcpy(&value, row.data() + at, sizeof(Number));
        value = static_cast<Number>(value + before);
        std::memcpy(row.data() + at, &value, sizeof(Number));
    }
}

void AddUp(std::span<std::uint8_t> row, std::size_t samples, std::uint16_t bits) {
    switch (bits) {
    case 8:
        return AddUp<std::uint8_t>(row, samples);
    case 16:
        return AddUp<std::uint16_t>(row, samples);
    case 32:
        return AddUp<std::uint32_t>(row, samples);
    default:
        return AddUp<std::uint64_t>(row, samples);
    }
}

class UnpackedBlock : public TiffBlock {
public:
    UnpackedBlock(TiffFile& file, const TiffLayout& layout, std::unique_ptr<TiffUnpacker> unpacker)
        : file_(file), samples_(static_cast<std::size_t>(layout.SamplesTogether())), bits_(layout.bits),
          predictor_(PredictorOf(file)), isSwapped_(bits_ > 8 && TIFFIsByteSwapped(file.Handle()) != 0),
          unpacker_(std::move(unpacker)) {}

    void ReadRow(std::span<std::uint8_t> row) override {
        if (file_.Pause())
            file_.Pause()();
        unpacker_->Read(row);
        if (predictor_ == PREDICTOR_FLOATINGPOINT)
            return JoinFloats(row);
        if (isSwapped_)
            SwapBytes(row, bits_ / 8U);
        if (predictor_ == PREDICTOR_HORIZONTAL)
            AddUp(row, samples_, bits_);
    }

private:
    /// All first bytes of a row's numbers stand side by side, the most significant ones, then all second
    /// ones; each is stored as what it differs by from the one before.
    void JoinFloats(std::span<std::uint8_t> row) {
        AddUp<std::uint8_t>(row, samples_);
        parts_.assign(row.begin(), row.end());
        const std::size_t bytes = bits_ / 8U, numbers = row.size() / bytes;
        for (std::size_t number = 0; number < numbers; ++number)
            for (std::size_t byte = 0; byte < bytes; ++byte)
                row[number * bytes + bytes - 1 - byte] = parts_[byte * numbers + number];
    }

    TiffFile& file_;
    const std::size_t samples_;
    const std::uint16_t bits_;
    const std::uint16_t predictor_;
    const bool isSwapped_;
    std::unique_ptr<TiffUnpacker> unpacker_;
    std::vector<std::uint8_t> parts_;
};

} // namespace

std::unique_ptr<TiffBlock> TryOpenUnpackedBlock(TiffFile& file, const TiffLayout& layout,
                                                std::uint32_t block) {
    const bool isInOrder = file.Tag16(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) == FILLORDER_MSB2LSB;
    if (!isInOrder || (layout.bits > 8 && !AreWholeBytes(layout.bits)) ||
        !IsPredictorKnown(PredictorOf(file), layout))
        return nullptr;
    std::unique_ptr<TiffUnpacker> unpacker = MakeTiffUnpacker(file, block);
    return unpacker ? std::make_unique<UnpackedBlock>(file, layout, std::move(unpacker)) : nullptr;
}
