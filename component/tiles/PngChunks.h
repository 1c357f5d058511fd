#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The chunk layer of PNG (ISO/IEC 15948): a signature, then chunks of length, type, data and CRC-32, the
// numbers big-endian.

inline constexpr std::array<std::uint8_t, 8> PngSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

/// A chunk's type as the number its four letters make.
constexpr std::uint32_t PngType(char a, char b, char c, char d) {
    const auto byte = [](char letter) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(letter));
    };
    return byte(a) << 24 | byte(b) << 16 | byte(c) << 8 | byte(d);
}

inline constexpr std::uint32_t PngIhdr = PngType('I', 'H', 'D', 'R');
inline constexpr std::uint32_t PngPlte = PngType('P', 'L', 'T', 'E');
inline constexpr std::uint32_t PngTrns = PngType('t', 'R', 'N', 'S');
inline constexpr std::uint32_t PngIdat = PngType('I', 'D', 'A', 'T');
inline constexpr std::uint32_t PngIend = PngType('I', 'E', 'N', 'D');

/// The colour types of IHDR that tiles use.
enum class PngColour : std::uint8_t { Grey = 0, Rgb = 2, Indexed = 3, Rgba = 6 };

struct PngChunk {
    std::uint32_t type = 0;
    std::span<const std::uint8_t> data;

    /// Chunks that a reader may pass over have a small first letter.
    bool IsAncillary() const { return (type & 0x20000000U) != 0; }
};

/// Walks over the chunks of a PNG file in memory. The CRCs are passed over: a stored tile has been checked
/// against its digest as a whole, and what no digest covers is still held to every length and to the
/// checksum inside the compressed stream.
class PngChunkReader {
public:
    /// Throws FileDamaged when the signature is not there.
    explicit PngChunkReader(std::span<const std::uint8_t> png);

    /// The next chunk; throws FileDamaged when the bytes end before it does.
    PngChunk Next();
    bool AtEnd() const { return rest_.empty(); }

private:
    std::span<const std::uint8_t> rest_;
};

/// Writes chunks into a buffer that is made large enough beforehand.
class PngChunkWriter {
public:
    /// Starts the file with its signature. The buffer must outlive the writer.
    explicit PngChunkWriter(std::vector<std::uint8_t>& buffer);

    void Append(std::uint32_t type, std::span<const std::uint8_t> data);

    /// A chunk whose data is made in place: room for at most `most` bytes, then Close with the true length.
    std::span<std::uint8_t> Open(std::uint32_t type, std::size_t most);
    void Close(std::size_t length);

    std::size_t Size() const { return size_; }

private:
    void Reserve(std::size_t more);
    void Put32(std::uint32_t value);

    std::vector<std::uint8_t>& buffer_;
    std::size_t size_;
    std::size_t open_ = 0;
};

/// A big-endian 32-bit number at the start of four or more bytes.
std::uint32_t PngRead32(std::span<const std::uint8_t> bytes);

/// The error for stored bytes that are no tile: one sentence that ends in the reason.
[[noreturn]] void ThrowTileDamaged(const char* reason);
