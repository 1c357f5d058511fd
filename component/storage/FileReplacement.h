#pragma once

#include "component/storage/FileSystem.h"

#include <functional>
#include <string>

/// A file that is built beside its target under a temporary name and then takes its place at once. Unless it
/// does, nothing of it stays and the target is as it was.
class FileReplacement {
public:
    /// Makes the empty temporary; sweeps those that killed programs left for the same target.
    FileReplacement(std::shared_ptr<FileSystem> files, std::filesystem::path target);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    const std::filesystem::path& Temporary() const { return temporary_; }

    /// Makes what was written to the temporary durable.
    void Sync();
    /// Puts the temporary in the target's place. A file that stood there is kept as NAME.bak, NAME.bak2, …
    /// when `keepFormer` says so.
    void TakePlace(bool keepFormer);
    /// Makes the new name durable. From TakePlace on the new file is the target, whatever this reports.
    void SyncFolder();

private:
    void SweepAbandoned() const;
    void KeepFormer();
    /// What goes wrong with the temporary is told of the target, the only name that the user knows.
    void NamingTarget(const std::function<void()>& step) const;

    std::shared_ptr<FileSystem> files_;
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    std::unique_ptr<FileSystem::LockedFile> locked_;
    bool placed_ = false;
};
