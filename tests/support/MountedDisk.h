#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include <sys/mount.h>

/// A small file system of its own, in memory, as long as the object lives. Needs a privileged user.
class MountedDisk {
public:
    /// Makes the folder, which shall not be there yet. `options`: for example "size=1m".
    MountedDisk(std::filesystem::path folder, const std::string& options) : folder_(std::move(folder)) {
        std::filesystem::create_directory(folder_);
        Mount(0, options);
    }
    ~MountedDisk() { umount2(folder_.c_str(), MNT_DETACH); }
    MountedDisk(const MountedDisk&) = delete;
    MountedDisk& operator=(const MountedDisk&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return folder_ / name; }
    const std::filesystem::path& Path() const { return folder_; }

    void MakeReadOnly() const { Mount(MS_REMOUNT | MS_RDONLY, {}); }
    /// `options`: the new size, "size=16m".
    void Resize(const std::string& options) const { Mount(MS_REMOUNT, options); }

private:
    void Mount(unsigned long flags, const std::string& options) const {
        if (mount("tmpfs", folder_.c_str(), "tmpfs", flags, options.empty() ? nullptr : options.c_str()) != 0)
            throw std::runtime_error("no file system can be mounted: this test needs root");
    }

    std::filesystem::path folder_;
};
