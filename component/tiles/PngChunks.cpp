#include "component/tiles/PngChunks.h"

#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"

#include <libdeflate.h>

#include <algorithm>
#include <string>

namespace {

/// Length and type before the data, the CRC after it.
constexpr std::size_t BeforeData = 8;
constexpr std::size_t AfterData = 4;

} // namespace

void ThrowTileDamaged(const char* reason) {
    throw ComponentError(ErrorNumber::FileDamaged, std::string("A stored image is damaged: ") + reason + ".");
}

std::uint32_t PngRead32(std::span<const std::uint8_t> bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
           std::uint32_t{bytes[3]};
}

PngChunkReader::PngChunkReader(std::span<const std::uint8_t> png) : rest_(png) {
    if (png.size() < PngSignature.size() ||
        !std::equal(PngSignature.begin(), PngSignature.end(), png.begin()))
        ThrowTileDamaged("it does not begin as a PNG file");
    rest_ = png.subspan(PngSignature.size());
}

PngChunk PngChunkReader::Next() {
    if (rest_.size() < BeforeData + AfterData)
        ThrowTileDamaged("it breaks off");
    const std::size_t length = PngRead32(rest_);
    if (length > rest_.size() - BeforeData - AfterData)
        ThrowTileDamaged("a chunk is longer than what is left");
    const PngChunk chunk{PngRead32(rest_.subspan(4)), rest_.subspan(BeforeData, length)};
    rest_ = rest_.subspan(BeforeData + length + AfterData);
    return chunk;
}

PngChunkWriter::PngChunkWriter(std::vector<std::uint8_t>& buffer)
    : buffer_(buffer), size_(PngSignature.size()) {
    Reserve(0);
    std::copy(PngSignature.begin(), PngSignature.end(), buffer_.begin());
}

void PngChunkWriter::Append(std::uint32_t type, std::span<const std::uint8_t> data) {
    const std::span<std::uint8_t> room = Open(type, data.size());
    std::copy(data.begin(), data.end(), room.begin());
    Close(data.size());
}

std::span<std::uint8_t> PngChunkWriter::Open(std::uint32_t type, std::size_t most) {
    Reserve(BeforeData + most + AfterData);
    open_ = size_;
    size_ += 4; // the length, known at Close
    Put32(type);
    return {buffer_.data() + size_, most};
}

void PngChunkWriter::Close(std::size_t length) {
    size_ = open_;
    Put32(CheckedNarrow<std::uint32_t>(length));
    // The CRC covers type and data.
    const std::uint32_t crc = libdeflate_crc32(0, buffer_.data() + size_, 4 + length);
    size_ += 4 + length;
    Put32(crc);
}

void PngChunkWriter::Reserve(std::size_t more) {
    // Only ever grown, so that a buffer used again from tile to tile is not cleared each time.
    if (buffer_.size() < size_ + more)
        buffer_.resize(size_ + more);
}

void PngChunkWriter::Put32(std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        buffer_[size_++] = static_cast<std::uint8_t>(value >> shift);
}
