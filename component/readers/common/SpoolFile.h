#pragma once

#include "base/FileDescriptor.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

/// A temporary file without a name that holds decoded pixels which memory should not: it goes away with the
/// object, or with the process. What lies on the disk is encrypted under a random key that only the object
/// knows, so that nothing of a map that is going to be sealed stays readable there. Parts that were never
/// written read as 0 and take no space. One thread at a time.
class SpoolFile {
public:
    /// Makes it in this folder; empty, or no place to make a file in: the user's temporary folder. Throws
    /// FileNotWritable or DiskFull, as stood in the way at the first of them.
    explicit SpoolFile(const std::filesystem::path& folder);
    ~SpoolFile();
    SpoolFile(const SpoolFile&) = delete;
    SpoolFile& operator=(const SpoolFile&) = delete;

    /// Offsets are bytes from the begin. Throws DiskFull or FileNotWritable.
    void Write(std::int64_t offset, std::span<const std::uint8_t> bytes);
    /// Throws FileNotReadable.
    void Read(std::int64_t offset, std::span<std::uint8_t> bytes) const;

private:
    bool IsWritten(std::int64_t block) const;
    void MarkWritten(std::int64_t block);
    void WritePart(std::int64_t offset, std::span<const std::uint8_t> bytes);
    void WriteBlocks(std::int64_t offset, std::span<const std::uint8_t> bytes);
    /// Encrypts or decrypts the bytes that stand at the offset.
    void Crypt(std::int64_t offset, std::span<std::uint8_t> bytes) const;

    FileDescriptor descriptor_;
    std::array<std::uint8_t, 32> key_{};
    std::array<std::uint8_t, 24> nonce_{};
    std::vector<bool> written_; ///< by block
};
