#pragma once

#include "component/storage/files/FileSystem.h"

#include <functional>
#include <string>

/// Removes the temporaries that killed programs left beside the target.
void SweepTemporaries(FileSystem& files, const std::filesystem::path& target);
/// Makes the target's name durable after another file took it.
void SyncFolderOf(FileSystem& files, const std::filesystem::path& target);

/// A file that is built beside its target under a temporary name and then takes its place at once. Unless it
/// does, nothing of it stays and the target is as it was.
class FileReplacement {
public:
    /// Makes the empty temporary; sweeps those that killed programs left for the same target.
    /// FileNotWritable when the target is a folder, device, pipe or symbolic link: its user follows links.
    FileReplacement(std::shared_ptr<FileSystem> files, std::filesystem::path target);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    const std::filesystem::path& Temporary() const { return temporary_; }

    /// Makes what was written to the temporary durable.
    void Sync();
    /// Puts the temporary in the target's place. FileLocked when another program is writing the target, or
    /// left a journal beside it.
    enum class Former {
        Ours, ///< its write lock is the caller's; it is replaced
        Kept  ///< any file: locked here while it is replaced, and kept as NAME.bak, NAME.bak2, …
    };
    /// `needsNoCopy` is asked under the lock whether the file that stands there need not be kept after all.
    void Place(Former former, const std::function<bool()>& needsNoCopy = {});
    /// Takes the temporary's name away at once; its space stays taken as long as the object lives.
    void GiveUp() noexcept;

private:
    /// Gives the name under which it is kept.
    std::filesystem::path KeepFormer();
    void RequireNoJournal() const;
    /// What goes wrong with the temporary is told of the target, the only name that the user knows.
    void NamingTarget(const std::function<void()>& step) const;

    std::shared_ptr<FileSystem> files_;
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    std::unique_ptr<FileSystem::LockedFile> locked_;
    bool isTemporary_ = true; ///< it has its name still
};
