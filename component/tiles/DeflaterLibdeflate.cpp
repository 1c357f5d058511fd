#include "component/tiles/Deflater.h"

#include "base/ComponentError.h"

#include <libdeflate.h>

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
    return libdeflate_zlib_compress_bound(state_->compressor.get(), size);
}

std::size_t Deflater::Compress(std::span<const std::uint8_t> raw, std::span<std::uint8_t> out,
                               Progress* progress) {
    if (progress != nullptr)
        progress->ThrowIfCancelled();
    const std::size_t length =
        libdeflate_zlib_compress(state_->compressor.get(), raw.data(), raw.size(), out.data(), out.size());
    if (length == 0)
        throw ComponentError(ErrorNumber::Failed, "A tile could not be compressed.");
    if (progress != nullptr) {
        progress->Add(static_cast<std::int64_t>(raw.size()));
        progress->ThrowIfCancelled();
    }
    return length;
}
