#include "component/readers/common/SpoolFile.h"

#include "base/Bytes.h"
#include "base/ComponentError.h"
#include "base/StandardErrors.h"

#include <fcntl.h>
#include <sodium.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace {

[[noreturn]] void ThrowWriteError(int number) {
    throw ComponentError(WriteErrorNumber(number), "The temporary file of an image could not be written: " +
                                                       SystemReason(number) + ".");
}

/// So much is encrypted as one: a part of it that is not written reads as 0 all the same.
constexpr std::int64_t Block = 4096;
constexpr std::int64_t BlocksAtOnce = 64;
/// The cipher counts in these.
constexpr std::int64_t CipherBlock = 64;

void WriteAt(int descriptor, std::int64_t offset, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = pwrite(descriptor, bytes.data(), bytes.size(), offset);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            ThrowWriteError(written < 0 ? errno : ENOSPC);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        offset += written;
    }
}

void ReadAt(int descriptor, std::int64_t offset, std::span<std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t read = pread(descriptor, bytes.data(), bytes.size(), offset);
        if (read < 0 && errno == EINTR)
            continue;
        if (read <= 0)
            throw ComponentError(ErrorNumber::FileNotReadable,
                                 "The temporary file of an image could not be read: " +
                                     SystemReason(read < 0 ? errno : EIO) + ".");
        bytes = bytes.subspan(static_cast<std::size_t>(read));
        offset += read;
    }
}

std::filesystem::path UserTemporaryFolder() {
    std::error_code error;
    std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error)
        ThrowWriteError(error.value());
    return folder;
}

/// A file that has lost its name at once; not open where none can be made, with the reason in errno.
FileDescriptor MakeNameless(const std::filesystem::path& folder) {
    std::string name = (folder / "quorvant-image-XXXXXX").string();
    FileDescriptor descriptor(mkostemp(name.data(), O_CLOEXEC));
    if (descriptor.IsOpen())
        unlink(name.c_str());
    return descriptor;
}

/// The part of `length` bytes from the offset on that lies in one block.
std::size_t PartInBlock(std::int64_t offset, std::size_t length) {
    return std::min(length, static_cast<std::size_t>(Block - offset % Block));
}

} // namespace

SpoolFile::SpoolFile(const std::filesystem::path& folder) {
    FillRandom(key_);
    FillRandom(nonce_);
    if (!folder.empty())
        descriptor_ = MakeNameless(folder);
    const int error = errno;
    if (!descriptor_.IsOpen())
        descriptor_ = MakeNameless(UserTemporaryFolder());
    if (!descriptor_.IsOpen())
        ThrowWriteError(folder.empty() ? errno : error);
}

SpoolFile::~SpoolFile() {
    sodium_memzero(key_.data(), key_.size());
}

bool SpoolFile::IsWritten(std::int64_t block) const {
    const auto index = static_cast<std::size_t>(block);
    return index < written_.size() && written_[index];
}

void SpoolFile::MarkWritten(std::int64_t block) {
    const auto index = static_cast<std::size_t>(block);
    if (index >= written_.size())
        written_.resize(std::max(index + 1, written_.size() * 2));
    written_[index] = true;
}

/// Any number of bytes, piece by piece.
void SpoolFile::Crypt(std::int64_t offset, std::span<std::uint8_t> bytes) const {
    std::array<std::uint8_t, Block + CipherBlock> buffer{};
    while (!bytes.empty()) {
        // A range may begin inside one of the cipher's own blocks.
        const std::span<std::uint8_t> piece = bytes.first(PartInBlock(offset, bytes.size()));
        const auto before = static_cast<std::size_t>(offset % CipherBlock);
        std::copy(piece.begin(), piece.end(), buffer.begin() + static_cast<std::ptrdiff_t>(before));
        crypto_stream_xchacha20_xor_ic(buffer.data(), buffer.data(), before + piece.size(), nonce_.data(),
                                       static_cast<std::uint64_t>(offset / CipherBlock), key_.data());
        std::copy_n(buffer.begin() + static_cast<std::ptrdiff_t>(before), piece.size(), piece.begin());
        bytes = bytes.subspan(piece.size());
        offset += static_cast<std::int64_t>(piece.size());
    }
}

/// A part of one block.
void SpoolFile::WritePart(std::int64_t offset, std::span<const std::uint8_t> bytes) {
    std::array<std::uint8_t, Block> block{};
    const std::int64_t number = offset / Block, start = number * Block;
    const auto at = static_cast<std::size_t>(offset - start);
    std::copy(bytes.begin(), bytes.end(), block.begin() + static_cast<std::ptrdiff_t>(at));
    // The rest of a new block is written too, as zeros that do not look like it.
    const bool isNew = !IsWritten(number);
    const std::span<std::uint8_t> part =
        isNew ? std::span<std::uint8_t>(block) : std::span<std::uint8_t>(block).subspan(at, bytes.size());
    const std::int64_t place = isNew ? start : offset;
    Crypt(place, part);
    WriteAt(descriptor_.Number(), place, part);
    MarkWritten(number);
}

/// Whole blocks, at most BlocksAtOnce.
void SpoolFile::WriteBlocks(std::int64_t offset, std::span<const std::uint8_t> bytes) {
    std::vector<std::uint8_t> blocks(bytes.begin(), bytes.end());
    Crypt(offset, blocks);
    WriteAt(descriptor_.Number(), offset, blocks);
    const auto count = static_cast<std::int64_t>(bytes.size()) / Block;
    for (std::int64_t block = offset / Block; block < offset / Block + count; ++block)
        MarkWritten(block);
}

void SpoolFile::Write(std::int64_t offset, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        std::size_t length = PartInBlock(offset, bytes.size());
        if (length == static_cast<std::size_t>(Block)) {
            length = std::min(bytes.size() / Block * Block, static_cast<std::size_t>(BlocksAtOnce * Block));
            WriteBlocks(offset, bytes.first(length));
        } else {
            WritePart(offset, bytes.first(length));
        }
        bytes = bytes.subspan(length);
        offset += static_cast<std::int64_t>(length);
    }
}

void SpoolFile::Read(std::int64_t offset, std::span<std::uint8_t> bytes) const {
    while (!bytes.empty()) {
        const bool isWritten = IsWritten(offset / Block);
        std::size_t length = PartInBlock(offset, bytes.size());
        // On through the blocks of which the same is true.
        while (length < bytes.size() &&
               IsWritten((offset + static_cast<std::int64_t>(length)) / Block) == isWritten)
            length += PartInBlock(offset + static_cast<std::int64_t>(length), bytes.size() - length);
        const std::span<std::uint8_t> part = bytes.first(length);
        if (isWritten) {
            ReadAt(descriptor_.Number(), offset, part);
            Crypt(offset, part);
        } else {
            std::ranges::fill(part, std::uint8_t{0});
        }
        bytes = bytes.subspan(length);
        offset += static_cast<std::int64_t>(length);
    }
}
