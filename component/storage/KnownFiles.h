#pragma once

#include "component/storage/LibraryFile.h"

#include <sys/types.h>

#include <map>

/// The files that hold a state which a library has loaded or saved: replacing one of them loses nothing.
class KnownFiles {
public:
    /// The file holds this state now.
    void Remember(const LibraryFile& file);
    void Forget() { files_.clear(); }
    /// Whether the file of this name is the one that was remembered, with the state that it had then.
    bool StillHolds(const std::filesystem::path& path) const;

private:
    struct Known {
        dev_t device;
        ino_t inode;
        LibraryFile::HeaderRow row;
    };
    std::map<std::filesystem::path, Known> files_;
};
