#pragma once

#include "base/FileDescriptor.h"

#include <cstdint>
#include <span>

/// A temporary file without a name that holds decoded pixels which memory should not: it goes away with the
/// object, or with the process. Parts that were never written read as 0 and take no space.
class SpoolFile {
public:
    /// Makes it in the user's temporary folder. Throws FileNotWritable or DiskFull.
    SpoolFile();

    /// Offsets are bytes from the begin. Throws DiskFull or FileNotWritable.
    void Write(std::int64_t offset, std::span<const std::uint8_t> bytes);
    /// Throws FileNotReadable.
    void Read(std::int64_t offset, std::span<std::uint8_t> bytes) const;

private:
    FileDescriptor descriptor_;
};
