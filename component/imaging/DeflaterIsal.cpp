#include "component/imaging/Deflater.h"

#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"

#include <isa-l.h>

#include <vector>

struct Deflater::State {
    // Without a level buffer of its own the library falls back to level 0, whose output is half as large
    // again.
    std::vector<std::uint8_t> levelBuffer = std::vector<std::uint8_t>(ISAL_DEF_LVL1_DEFAULT);
    isal_zstream stream{};
};

Deflater::Deflater() : state_(std::make_unique<State>()) {}
Deflater::~Deflater() = default;
Deflater::Deflater(Deflater&&) noexcept = default;
Deflater& Deflater::operator=(Deflater&&) noexcept = default;

std::size_t Deflater::Bound(std::size_t size) const {
    // Noise grows a little under level 1; the slack also keeps the library off its slow path at the end.
    return size + size / 8 + 4096;
}

std::size_t Deflater::Compress(std::span<const std::uint8_t> raw, std::span<std::uint8_t> out) {
    isal_zstream& stream = state_->stream;
    isal_deflate_stateless_init(&stream);
    stream.level = 1;
    stream.level_buf = state_->levelBuffer.data();
    stream.level_buf_size = CheckedNarrow<std::uint32_t>(state_->levelBuffer.size());
    stream.gzip_flag = IGZIP_ZLIB;
    stream.end_of_stream = 1;
    stream.flush = NO_FLUSH;
    // The library reads through a pointer that is not const, and never writes through it.
    stream.next_in = const_cast<std::uint8_t*>(raw.data());
    stream.avail_in = CheckedNarrow<std::uint32_t>(raw.size());
    stream.next_out = out.data();
    stream.avail_out = CheckedNarrow<std::uint32_t>(out.size());
    if (isal_deflate_stateless(&stream) != COMP_OK)
        throw ComponentError(ErrorNumber::Failed, "A tile could not be compressed.");
    return stream.total_out;
}
