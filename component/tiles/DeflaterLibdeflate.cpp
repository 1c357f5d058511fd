#include "component/tiles/Deflater.h"

#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <new>

namespace {

constexpr int FastestLevel = 1;

struct FreeCompressor {
    void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
};

} // namespace

struct Deflater::State {
    std::unique_ptr<libdeflate_compressor, FreeCompressor> compressor{
        libdeflate_alloc_compressor(FastestLevel)};
};

Deflater::Deflater() : state_(std::make_unique<State>()) {
    if (!state_->compressor)
        throw std::bad_alloc();
}
Deflater::~Deflater() = default;
Deflater::Deflater(Deflater&&) noexcept = default;
Deflater& Deflater::operator=(Deflater&&) noexcept = default;

std::size_t Deflater::Bound(std::size_t size) const {
    return std::max(libdeflate_zlib_compress_bound(state_->compressor.get(), size),
                    static_cast<std::size_t>(compressBound(static_cast<uLong>(size))));
}

namespace {

[[noreturn]] void Refused() {
    throw ComponentError(ErrorNumber::Failed, "A tile could not be compressed.");
}

/// Some ten milliseconds' work.
constexpr std::size_t StepBytes = std::size_t{1} << 20;

/// libdeflate compresses wholes only; zlib's stream of the same form is filled in steps.
class Stepwise {
public:
    explicit Stepwise(std::span<std::uint8_t> out) {
        if (deflateInit(&stream_, FastestLevel) != Z_OK)
            throw std::bad_alloc();
        stream_.next_out = out.data();
        stream_.avail_out = CheckedNarrow<uInt>(out.size());
    }
    ~Stepwise() { deflateEnd(&stream_); }
    Stepwise(const Stepwise&) = delete;
    Stepwise& operator=(const Stepwise&) = delete;

    void Add(std::span<const std::uint8_t> step, bool isLast) {
        stream_.next_in = const_cast<Bytef*>(step.data()); // zlib only reads there
        stream_.avail_in = CheckedNarrow<uInt>(step.size());
        if (deflate(&stream_, isLast ? Z_FINISH : Z_NO_FLUSH) != (isLast ? Z_STREAM_END : Z_OK))
            Refused();
    }
    std::size_t Length() const { return stream_.total_out; }

private:
    z_stream stream_{};
};

std::size_t CompressInSteps(std::span<const std::uint8_t> raw, std::span<std::uint8_t> out,
                            Progress& progress) {
    Stepwise stepwise(out);
    while (!raw.empty()) {
        progress.ThrowIfCancelled();
        const std::span<const std::uint8_t> step = raw.first(std::min(StepBytes, raw.size()));
        raw = raw.subspan(step.size());
        stepwise.Add(step, raw.empty());
        progress.Add(static_cast<std::int64_t>(step.size()));
    }
    return stepwise.Length();
}

} // namespace

std::size_t Deflater::Compress(std::span<const std::uint8_t> raw, std::span<std::uint8_t> out,
                               Progress* progress) {
    if (progress != nullptr)
        return CompressInSteps(raw, out, *progress);
    const std::size_t length =
        libdeflate_zlib_compress(state_->compressor.get(), raw.data(), raw.size(), out.data(), out.size());
    if (length == 0)
        Refused();
    return length;
}
