#pragma once

#include <filesystem>
#include <memory>

/// The few steps by which a new file takes the place of an old one. They go through this interface so that
/// each can be made to fail. All throw FileNotWritable or DiskFull, naming the path and the reason.
class FileSystem {
public:
    /// A file that this process made and holds locked as long as the object lives.
    class LockedFile {
    public:
        virtual ~LockedFile() = default;
        /// Makes the content durable.
        virtual void Sync() = 0;
        /// Gives the file the access rights of another, or those of any new file when there is none.
        virtual void CopyRightsOf(const std::filesystem::path& other) = 0;
    };

    virtual ~FileSystem() = default;

    /// Makes a file that did not exist, readable and writable by its owner alone.
    virtual std::unique_ptr<LockedFile> CreateLocked(const std::filesystem::path& file) = 0;
    /// Puts a file under another name, in place of whatever had it.
    virtual void Replace(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    /// Gives a file a second name (or makes a copy, where a file can have but one); false when that name is
    /// taken.
    virtual bool AddName(const std::filesystem::path& file, const std::filesystem::path& name) = 0;
    /// Makes names in the folder durable.
    virtual void SyncFolder(const std::filesystem::path& folder) = 0;
    virtual void Remove(const std::filesystem::path& file) noexcept = 0;
    /// Removes a file that CreateLocked made once and nobody holds any more.
    virtual void RemoveIfAbandoned(const std::filesystem::path& file) noexcept = 0;
};

/// The operating system's.
std::shared_ptr<FileSystem> SystemFiles();
