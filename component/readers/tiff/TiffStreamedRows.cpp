#include "component/readers/tiff/TiffStreamedRows.h"

#include "component/readers/common/ImageError.h"

#include <algorithm>
#include <cstring>

namespace {

bool HasPredictor(std::uint16_t compression) {
    return compression == COMPRESSION_LZW || compression == COMPRESSION_DEFLATE ||
           compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_ZSTD;
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

std::int64_t BlockRowBytes(const TiffLayout& layout) {
    return (layout.blockWidth * layout.SamplesTogether() * layout.bits + 7) / 8;
}

} // namespace

std::unique_ptr<TiffStreamedRows> TiffStreamedRows::TryMake(TiffFile& file, const TiffLayout& layout) {
    if (file.Tag16(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) != FILLORDER_MSB2LSB)
        return nullptr;
    if (layout.bits > 8 && !AreWholeBytes(layout.bits))
        return nullptr;
    const std::uint16_t predictor = PredictorOf(file);
    const bool hasDifferences = predictor == PREDICTOR_HORIZONTAL;
    const bool areSamples = AreWholeBytes(layout.bits) && layout.bits != 24;
    if (predictor != PREDICTOR_NONE && !(hasDifferences && areSamples))
        return nullptr;
    std::unique_ptr<TiffStreamedRows> rows(new TiffStreamedRows(file, layout, hasDifferences));
    return MakeTiffUnpacker(file, 0) ? std::move(rows) : nullptr;
}

TiffStreamedRows::TiffStreamedRows(TiffFile& file, const TiffLayout& layout, bool hasDifferences)
    : file_(file), layout_(layout), hasDifferences_(hasDifferences),
      across_((layout.width + layout.blockWidth - 1) / layout.blockWidth), rowBytes_(TiffRowBytes(layout)) {
    blockRow_ = ImageBuffer(file.Path(), BlockRowBytes(layout));
    for (int plane = 0; plane < layout.Planes(); ++plane)
        planes_.push_back(ImageBuffer(file.Path(), rowBytes_));
}

void TiffStreamedRows::Next(const std::function<void()>& pause) {
    pause();
    if (++row_ % layout_.blockHeight == 0)
        OpenBlocks();
    for (std::size_t plane = 0; plane < planes_.size(); ++plane)
        ReadPlane(plane);
}

void TiffStreamedRows::OpenBlocks() {
    const std::int64_t down = (layout_.height + layout_.blockHeight - 1) / layout_.blockHeight;
    blocks_.clear();
    for (std::int64_t plane = 0; plane < layout_.Planes(); ++plane)
        for (std::int64_t x = 0; x < across_; ++x)
            blocks_.push_back(OpenBlock(
                static_cast<std::uint32_t>((plane * down + row_ / layout_.blockHeight) * across_ + x)));
}

std::unique_ptr<TiffUnpacker> TiffStreamedRows::OpenBlock(std::uint32_t block) {
    if (IsTiffBlockLeftOut(file_, block))
        return nullptr;
    auto unpacker = MakeTiffUnpacker(file_, block);
    if (!unpacker)
        ThrowDamaged(file_.Path(), "its strips or tiles are of different kinds");
    return unpacker;
}

void TiffStreamedRows::ReadPlane(std::size_t plane) {
    for (std::int64_t x = 0; x < across_; ++x) {
        if (TiffUnpacker* block =
                blocks_[plane * static_cast<std::size_t>(across_) + static_cast<std::size_t>(x)].get()) {
            block->Read(blockRow_);
            FinishRow();
        } else {
            std::ranges::fill(blockRow_, std::uint8_t{0});
        }
        const auto left = x * static_cast<std::int64_t>(blockRow_.size());
        std::copy_n(blockRow_.begin(), std::min<std::int64_t>(std::ssize(blockRow_), rowBytes_ - left),
                    planes_[plane].begin() + left);
    }
}

void TiffStreamedRows::FinishRow() {
    if (layout_.bits > 8 && TIFFIsByteSwapped(file_.Handle()) != 0)
        SwapBytes(blockRow_, layout_.bits / 8U);
    if (hasDifferences_)
        AddUp(blockRow_, static_cast<std::size_t>(layout_.SamplesTogether()), layout_.bits);
}
