#include "component/readers/tiff/TiffUnpacker.h"

#include "component/readers/common/ImageError.h"
#include "component/readers/common/LzwWords.h"

#include <lzma.h>
#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace {

constexpr std::int64_t PieceBytes = std::int64_t{64} << 10;

constexpr const char* PixelsEnd = "the pixels of one of its strips or tiles end too early";

class Stored : public TiffUnpacker {
public:
    explicit Stored(TiffBytes bytes) : bytes_(std::move(bytes)) {}

    void Read(std::span<std::uint8_t> out) override {
        while (!out.empty()) {
            if (piece_.empty())
                piece_ = bytes_.Next();
            if (piece_.empty())
                bytes_.ThrowDamaged(PixelsEnd);
            const std::size_t count = std::min(piece_.size(), out.size());
            std::copy_n(piece_.begin(), count, out.begin());
            piece_ = piece_.subspan(count);
            out = out.subspan(count);
        }
    }

private:
    TiffBytes bytes_;
    std::span<const std::uint8_t> piece_;
};

/// Runs of one byte, and bytes that are no run.
class PackBits : public TiffUnpacker {
public:
    explicit PackBits(TiffBytes bytes) : stored_(std::move(bytes)) {}

    void Read(std::span<std::uint8_t> out) override {
        while (!out.empty()) {
            if (left_ == 0)
                Begin();
            const std::size_t count = std::min(left_, out.size());
            if (isRun_)
                std::fill_n(out.begin(), count, value_);
            else
                stored_.Read(out.first(count));
            left_ -= count;
            out = out.subspan(count);
        }
    }

private:
    std::uint8_t NextByte() {
        std::uint8_t byte = 0;
        stored_.Read({&byte, 1});
        return byte;
    }

    void Begin() {
        constexpr std::uint8_t Nothing = 128;
        const std::uint8_t kind = NextByte();
        if (kind == Nothing)
            return;
        isRun_ = kind > Nothing;
        left_ = isRun_ ? 257U - kind : kind + 1U;
        if (isRun_)
            value_ = NextByte();
    }

    Stored stored_;
    bool isRun_ = false;
    std::size_t left_ = 0;
    std::uint8_t value_ = 0;
};

class Lzw : public TiffUnpacker {
public:
    explicit Lzw(TiffBytes bytes) : bytes_(std::move(bytes)) {}

    void Read(std::span<std::uint8_t> out) override {
        out = out.subspan(words_.Pop(out));
        while (!out.empty()) {
            Follow(NextCode());
            out = out.subspan(words_.Pop(out));
        }
    }

private:
    static constexpr unsigned ClearCode = 256;
    static constexpr unsigned FirstBits = 9;

    unsigned NextCode() {
        while (bitCount_ < codeBits_) {
            if (piece_.empty())
                piece_ = bytes_.Next();
            if (piece_.empty())
                bytes_.ThrowDamaged(PixelsEnd);
            bits_ = bits_ << 8 | piece_.front();
            piece_ = piece_.subspan(1);
            bitCount_ += 8;
        }
        bitCount_ -= codeBits_;
        return bits_ >> bitCount_ & ((1U << codeBits_) - 1);
    }

    void Follow(unsigned code) {
        if (code == words_.EndCode())
            bytes_.ThrowDamaged(PixelsEnd);
        if (code == words_.ClearCode()) {
            words_.Clear();
            codeBits_ = FirstBits;
            return;
        }
        if (!words_.Follow(code))
            bytes_.ThrowDamaged("the codes of one of its strips or tiles contradict themselves");
        // In this format codes grow one code before they have to.
        if (words_.Known() + 1 == 1U << codeBits_ && codeBits_ < LzwWords::MostBits)
            ++codeBits_;
    }

    TiffBytes bytes_;
    std::span<const std::uint8_t> piece_;
    std::uint32_t bits_ = 0;
    unsigned bitCount_ = 0;
    unsigned codeBits_ = FirstBits;
    LzwWords words_{ClearCode};
};

class Deflate : public TiffUnpacker {
public:
    explicit Deflate(TiffBytes bytes) : bytes_(std::move(bytes)) {
        if (inflateInit(&stream_) != Z_OK)
            throw std::bad_alloc();
    }
    ~Deflate() override { inflateEnd(&stream_); }
    Deflate(const Deflate&) = delete;
    Deflate& operator=(const Deflate&) = delete;

    void Read(std::span<std::uint8_t> out) override {
        while (!out.empty()) {
            if (stream_.avail_in == 0)
                Feed();
            const auto most = static_cast<uInt>(std::min<std::size_t>(out.size(), std::size_t{1} << 30));
            stream_.next_out = out.data();
            stream_.avail_out = most;
            const int result = inflate(&stream_, Z_NO_FLUSH);
            out = out.subspan(most - stream_.avail_out);
            if (!out.empty())
                RequireMore(result);
        }
    }

private:
    /// Throws unless more pixels can come.
    void RequireMore(int result) const {
        if (result == Z_MEM_ERROR)
            throw std::bad_alloc();
        if (result == Z_STREAM_END || (isWhole_ && (result == Z_OK || result == Z_BUF_ERROR)))
            bytes_.ThrowDamaged(PixelsEnd);
        if (result != Z_OK && result != Z_BUF_ERROR)
            bytes_.ThrowDamaged(stream_.msg != nullptr ? stream_.msg : "its deflated pixels are broken");
    }

    void Feed() {
        const std::span<const std::uint8_t> piece = bytes_.Next();
        isWhole_ = piece.empty();
        stream_.next_in = const_cast<Bytef*>(piece.data()); // zlib only reads there
        stream_.avail_in = static_cast<uInt>(piece.size());
    }

    TiffBytes bytes_;
    z_stream stream_{};
    bool isWhole_ = false; ///< all that is stored has been fed
};

class Zstd : public TiffUnpacker {
public:
    explicit Zstd(TiffBytes bytes) : bytes_(std::move(bytes)), stream_(ZSTD_createDStream()) {
        if (!stream_)
            throw std::bad_alloc();
    }

    void Read(std::span<std::uint8_t> out) override {
        ZSTD_outBuffer target{out.data(), out.size(), 0};
        while (target.pos < target.size) {
            if (piece_.pos == piece_.size)
                Feed();
            const std::size_t before = target.pos;
            const std::size_t result = ZSTD_decompressStream(stream_.get(), &target, &piece_);
            if (ZSTD_isError(result) != 0)
                bytes_.ThrowDamaged(ZSTD_getErrorName(result));
            if (target.pos == before && piece_.size == 0)
                bytes_.ThrowDamaged(PixelsEnd);
        }
    }

private:
    struct Free {
        void operator()(ZSTD_DStream* stream) const { ZSTD_freeDStream(stream); }
    };

    void Feed() {
        const std::span<const std::uint8_t> piece = bytes_.Next();
        piece_ = {piece.data(), piece.size(), 0};
    }

    TiffBytes bytes_;
    std::unique_ptr<ZSTD_DStream, Free> stream_;
    ZSTD_inBuffer piece_{nullptr, 0, 0};
};

class Lzma : public TiffUnpacker {
public:
    explicit Lzma(TiffBytes bytes) : bytes_(std::move(bytes)) {
        if (lzma_stream_decoder(&stream_, MostMemory, 0) != LZMA_OK)
            throw std::bad_alloc();
    }
    ~Lzma() override { lzma_end(&stream_); }
    Lzma(const Lzma&) = delete;
    Lzma& operator=(const Lzma&) = delete;

    void Read(std::span<std::uint8_t> out) override {
        stream_.next_out = out.data();
        stream_.avail_out = out.size();
        while (stream_.avail_out > 0) {
            if (stream_.avail_in == 0)
                Feed();
            Check(lzma_code(&stream_, LZMA_RUN));
        }
    }

private:
    /// The coder's own greatest level asks for 65 MB.
    static constexpr std::uint64_t MostMemory = std::uint64_t{128} << 20;

    void Feed() {
        const std::span<const std::uint8_t> piece = bytes_.Next();
        stream_.next_in = piece.data();
        stream_.avail_in = piece.size();
    }

    void Check(lzma_ret result) const {
        if (result == LZMA_MEM_ERROR)
            throw std::bad_alloc();
        if (result == LZMA_STREAM_END && stream_.avail_out == 0)
            return;
        if (result == LZMA_STREAM_END || result == LZMA_BUF_ERROR)
            bytes_.ThrowDamaged(PixelsEnd);
        if (result != LZMA_OK)
            bytes_.ThrowDamaged("the LZMA data of one of its strips or tiles are broken");
    }

    TiffBytes bytes_;
    lzma_stream stream_ = LZMA_STREAM_INIT;
};

/// An early form of LZW, whose codes begin at the other end of the bytes.
bool IsOldLzw(TiffFile& file, std::uint32_t block) {
    TiffBytes bytes(file, block);
    const auto start = bytes.Next();
    return start.size() >= 2 && start[0] == 0 && (start[1] & 1) != 0;
}

} // namespace

TiffBytes::TiffBytes(TiffFile& file, std::uint32_t block)
    : file_(&file), at_(static_cast<std::int64_t>(TIFFGetStrileOffset(file.Handle(), block))) {
    const auto counted = static_cast<std::int64_t>(TIFFGetStrileByteCount(file.Handle(), block));
    left_ = at_ < 0 || counted < 0 ? 0 : std::min(counted, std::max<std::int64_t>(0, file.Size() - at_));
    piece_.resize(static_cast<std::size_t>(std::min(left_, PieceBytes)));
}

std::span<const std::uint8_t> TiffBytes::Next() {
    const auto wanted = static_cast<std::size_t>(std::min(left_, PieceBytes));
    const std::size_t got = wanted == 0 ? 0 : file_->ReadAt(at_, std::span(piece_).first(wanted));
    at_ += static_cast<std::int64_t>(got);
    left_ -= static_cast<std::int64_t>(got);
    return std::span(piece_).first(got);
}

void TiffBytes::ThrowDamaged(const std::string& reason) const {
    ::ThrowDamaged(file_->Path(), reason);
}

std::unique_ptr<TiffUnpacker> MakeTiffUnpacker(TiffFile& file, std::uint32_t block) {
    switch (file.Tag16(TIFFTAG_COMPRESSION, COMPRESSION_NONE)) {
    case COMPRESSION_NONE:
        return std::make_unique<Stored>(TiffBytes(file, block));
    case COMPRESSION_PACKBITS:
        return std::make_unique<PackBits>(TiffBytes(file, block));
    case COMPRESSION_LZW:
        return IsOldLzw(file, block) ? nullptr : std::make_unique<Lzw>(TiffBytes(file, block));
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
        return std::make_unique<Deflate>(TiffBytes(file, block));
    case COMPRESSION_ZSTD:
        return std::make_unique<Zstd>(TiffBytes(file, block));
    case COMPRESSION_LZMA:
        return std::make_unique<Lzma>(TiffBytes(file, block));
    default:
        return nullptr;
    }
}
