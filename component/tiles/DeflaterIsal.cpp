#include "component/tiles/Deflater.h"

#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"

#include <isa-l.h>

#include <algorithm>
#include <vector>

struct Deflater::State {
    // Without a level buffer of its own the library falls back to level 0, whose output is half as large
    // again.
    std::vector<std::uint8_t> levelBuffer = std::vector<std::uint8_t>(ISAL_DEF_LVL1_DEFAULT);
    isal_zstream stream{};

    std::size_t CompressInSteps(std::span<const std::uint8_t> raw, std::span<std::uint8_t> out,
                                Progress& progress);
};

Deflater::Deflater() : state_(std::make_unique<State>()) {}
Deflater::~Deflater() = default;
Deflater::Deflater(Deflater&&) noexcept = default;
Deflater& Deflater::operator=(Deflater&&) noexcept = default;

std::size_t Deflater::Bound(std::size_t size) const {
    // Noise grows a little under level 1; the slack also keeps the library off its slow path at the end.
    return size + size / 8 + 4096;
}

namespace {

void Prepare(isal_zstream& stream, std::vector<std::uint8_t>& levelBuffer, std::span<std::uint8_t> out) {
    stream.level = 1;
    stream.level_buf = levelBuffer.data();
    stream.level_buf_size = CheckedNarrow<std::uint32_t>(levelBuffer.size());
    stream.gzip_flag = IGZIP_ZLIB;
    stream.flush = NO_FLUSH;
    stream.next_out = out.data();
    stream.avail_out = CheckedNarrow<std::uint32_t>(out.size());
}

void Feed(isal_zstream& stream, std::span<const std::uint8_t> raw, bool isLast) {
    // The library reads through a pointer that is not const, and never writes through it.
    stream.next_in = const_cast<std::uint8_t*>(raw.data());
    stream.avail_in = CheckedNarrow<std::uint32_t>(raw.size());
    stream.end_of_stream = isLast ? 1 : 0;
}

[[noreturn]] void Refused() {
    throw ComponentError(ErrorNumber::Failed, "A tile could not be compressed.");
}

/// Some ten milliseconds' work.
constexpr std::size_t StepBytes = std::size_t{1} << 20;

} // namespace

std::size_t Deflater::State::CompressInSteps(std::span<const std::uint8_t> raw, std::span<std::uint8_t> out,
                                             Progress& progress) {
    isal_deflate_init(&stream);
    Prepare(stream, levelBuffer, out);
    while (!raw.empty()) {
        progress.ThrowIfCancelled();
        const std::span<const std::uint8_t> step = raw.first(std::min(StepBytes, raw.size()));
        raw = raw.subspan(step.size());
        Feed(stream, step, raw.empty());
        if (isal_deflate(&stream) != COMP_OK || stream.avail_in != 0)
            Refused();
        progress.Add(static_cast<std::int64_t>(step.size()));
    }
    if (stream.internal_state.state != ZSTATE_END)
        Refused();
    return stream.total_out;
}

std::size_t Deflater::Compress(std::span<const std::uint8_t> raw, std::span<std::uint8_t> out,
                               Progress* progress) {
    if (progress != nullptr)
        return state_->CompressInSteps(raw, out, *progress);
    isal_zstream& stream = state_->stream;
    isal_deflate_stateless_init(&stream);
    Prepare(stream, state_->levelBuffer, out);
    Feed(stream, raw, true);
    if (isal_deflate_stateless(&stream) != COMP_OK)
        Refused();
    return stream.total_out;
}
