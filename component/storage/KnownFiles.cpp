#include "component/storage/KnownFiles.h"

#include <sys/stat.h>

void KnownFiles::Remember(const LibraryFile& file) {
    struct stat status {};
    if (stat(file.Path().c_str(), &status) == 0 && !file.GetDatabase().HasMoved())
        files_[file.Path()] = {status.st_dev, status.st_ino, file.Row()};
    else
        files_.erase(file.Path());
}

bool KnownFiles::StillHolds(const std::filesystem::path& path) const {
    const auto known = files_.find(path);
    struct stat status {};
    if (known == files_.end() || stat(path.c_str(), &status) != 0 || status.st_dev != known->second.device ||
        status.st_ino != known->second.inode)
        return false;
    // A journal beside it is that of a program that was changing it.
    std::error_code error;
    if (std::filesystem::exists(path.string() + "-journal", error) || error)
        return false;
    try {
        return LibraryFile::RowOf(path) == known->second.row;
    } catch (const ComponentError&) {
        return false; // whatever it has become
    }
}
