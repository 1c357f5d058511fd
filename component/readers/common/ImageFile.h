#pragma once

#include "base/FileStream.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

/// An image file, open for reading. Only regular files are opened, and opening never waits (as a pipe
/// without a writer would). Errors name the file.
class ImageFile {
public:
    /// Throws FileNotFound, FileNotReadable (a folder, a device, no permission) or ImageNotReadable (empty).
    explicit ImageFile(std::filesystem::path path);

    const std::filesystem::path& Path() const { return path_; }
    /// Length in bytes when the file was opened, at least 1.
    std::int64_t Size() const { return size_; }
    /// For codec libraries that read from a C stream; it stands at the file's begin at first.
    std::FILE* Stream() const { return stream_.get(); }

    /// Moves to a byte counted from the file's begin. Throws FileNotReadable.
    void Seek(std::int64_t offset);
    /// Reads as many bytes as there are, at most the span's. Throws FileNotReadable on an I/O error.
    std::size_t ReadSome(std::span<std::uint8_t> bytes);
    /// Fills the span or throws ImageDamaged: the file ends in `what` ("its header").
    void Read(std::span<std::uint8_t> bytes, const std::string& what);

private:
    std::filesystem::path path_;
    std::int64_t size_ = 0;
    FileStream stream_;
};
