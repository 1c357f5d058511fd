#pragma once

#include "base/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The folder that an export writes into. Names are relative to it, with "/" between folders. Files are
/// opened beside the folder's own descriptor, so that the folder stays the same one even when it is renamed
/// meanwhile, and no symbolic link in a file's place is followed. Several threads may write at the same time.
/// Errors name the path: DiskFull where space, a quota or a size limit is the reason, else FileNotWritable.
class ExportFolder {
public:
    explicit ExportFolder(const std::filesystem::path& path);

    const std::filesystem::path& Path() const { return path_; }

    /// Makes the folder, or leaves it as it is.
    void MakeFolder(const std::string& name) const;
    /// Writes the file, over one that is there; leaves none where it fails.
    void Write(const std::string& name, std::span<const std::uint8_t> bytes) const;
    /// Puts the file in place whole, after it has reached the disk, or leaves the former one.
    void Replace(const std::string& name, std::string_view text) const;
    /// Waits until all that was written has reached the disk.
    void Sync() const;
    /// The file's content; nothing where there is none. FileNotReadable for what is no file or too large.
    std::optional<std::string> Read(const std::string& name, std::size_t largest) const;

private:
    void WriteNew(const std::string& name, std::span<const std::uint8_t> bytes, bool toDisk) const;
    [[noreturn]] void ThrowNotWritable(const std::string& name, int error) const;

    std::filesystem::path path_;
    FileDescriptor folder_;
};
