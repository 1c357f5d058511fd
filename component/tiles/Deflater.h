#pragma once

#include "base/Progress.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

/// Compresses whole blocks of memory into zlib streams (RFC 1950) at the fastest level. ISA-L does it where
/// the build found it, else libdeflate; either stream is read by every inflater. One object a thread.
class Deflater {
public:
    Deflater();
    ~Deflater();
    Deflater(Deflater&&) noexcept;
    Deflater& operator=(Deflater&&) noexcept;

    /// The most bytes that `size` bytes can become.
    std::size_t Bound(std::size_t size) const;

    /// Compresses `raw` into `out`, which holds at least Bound(raw.size()) bytes; answers the length of the
    /// stream. Throws Failed when the compressor refuses, which no content makes it do. With a progress, the
    /// bytes are added to it in steps of a megabyte and its cancel is seen between them.
    std::size_t Compress(std::span<const std::uint8_t> raw, std::span<std::uint8_t> out,
                         Progress* progress = nullptr);

private:
    struct State;
    std::unique_ptr<State> state_;
};
