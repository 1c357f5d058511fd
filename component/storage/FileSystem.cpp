#include "component/storage/FileSystem.h"

#include "base/ComponentError.h"
#include "base/FileDescriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

[[noreturn]] void Fail(const std::filesystem::path& file, int error) {
    const std::string name = file.string();
    if (error == ENOSPC || error == EDQUOT || error == EFBIG)
        throw ComponentError(ErrorNumber::DiskFull, "There is no space left to write '" + name + "'.");
    throw ComponentError(ErrorNumber::FileNotWritable,
                         "The file '" + name + "' could not be written: " + std::strerror(error) + ".");
}

void Check(bool succeeded, const std::filesystem::path& file) {
    if (!succeeded)
        Fail(file, errno);
}

/// Whether the path still names the file that is open.
bool Names(const std::filesystem::path& path, const FileDescriptor& file) {
    struct stat named {};
    struct stat opened {};
    return lstat(path.c_str(), &named) == 0 && fstat(file.Number(), &opened) == 0 &&
           named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

/// Waits for a sweeper that came between: it holds the lock no longer than it takes to remove a name. The
/// lock is one of the whole open file, unlike SQLite's: it stays when SQLite closes its own descriptor.
bool Lock(const FileDescriptor& file) {
    int result = 0;
    do
        result = flock(file.Number(), LOCK_EX);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

/// A new file with its lock. No call of the system makes both at once, and a sweeper may take the file for an
/// abandoned one in between and remove its name. Both decide under the lock and by the name: whoever holds
/// the lock of a file that still has its name owns it, and a maker whose file lost its name makes another.
FileDescriptor MakeLocked(const std::filesystem::path& path) {
    for (;;) {
        FileDescriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        Check(file.IsOpen(), path);
        if (!Lock(file)) {
            const int error = errno;
            unlink(path.c_str());
            Fail(path, error);
        }
        if (Names(path, file))
            return file;
    }
}

class SystemLockedFile : public FileSystem::LockedFile {
public:
    explicit SystemLockedFile(const std::filesystem::path& file)
        : path_(file), descriptor_(MakeLocked(file)) {}

    void Sync() override { Check(fsync(descriptor_.Number()) == 0, path_); }

    void TakeRightsOf(const std::filesystem::path& other) override {
        struct stat status {};
        if (stat(other.c_str(), &status) == 0) {
            Check(fchmod(descriptor_.Number(), status.st_mode & 07777) == 0, path_);
            // The owner can be kept only by a privileged user; the rights are what counts.
            [[maybe_unused]] const int ignored = fchown(descriptor_.Number(), status.st_uid, status.st_gid);
            return;
        }
        const mode_t mask = umask(0);
        umask(mask);
        Check(fchmod(descriptor_.Number(), 0666 & ~mask) == 0, path_);
    }

private:
    std::filesystem::path path_;
    FileDescriptor descriptor_;
};

/// FAT and some network file systems know one name a file.
bool LacksSecondNames(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK;
}

/// A durable copy in place of a second name; false when the name is taken.
bool Copy(const std::filesystem::path& file, const std::filesystem::path& name) {
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(name, error)))
        return false;
    if (!std::filesystem::copy_file(file, name, error))
        Fail(name, error.value());
    const FileDescriptor descriptor(open(name.c_str(), O_RDONLY | O_CLOEXEC));
    Check(descriptor.IsOpen() && fsync(descriptor.Number()) == 0, name);
    return true;
}

class SystemFileSystem : public FileSystem {
public:
    std::unique_ptr<LockedFile> CreateLocked(const std::filesystem::path& file) override {
        return std::make_unique<SystemLockedFile>(file);
    }

    void Replace(const std::filesystem::path& from, const std::filesystem::path& to) override {
        Check(rename(from.c_str(), to.c_str()) == 0, to);
    }

    bool AddName(const std::filesystem::path& file, const std::filesystem::path& name) override {
        if (link(file.c_str(), name.c_str()) == 0)
            return true;
        if (errno == EEXIST)
            return false;
        if (!LacksSecondNames(errno))
            Fail(name, errno);
        return Copy(file, name);
    }

    void SyncFolder(const std::filesystem::path& folder) override {
        const FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        Check(descriptor.IsOpen(), folder);
        // Some file systems do not know this call for folders; they order names by themselves.
        Check(fsync(descriptor.Number()) == 0 || errno == EINVAL, folder);
    }

    void Remove(const std::filesystem::path& file) noexcept override { unlink(file.c_str()); }

    void RemoveIfAbandoned(const std::filesystem::path& file) noexcept override {
        const FileDescriptor descriptor(open(file.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        // Between opening and locking, its maker may have put it in its place, or another have swept it; the
        // name is then gone, or that of a file that was made since.
        if (descriptor.IsOpen() && flock(descriptor.Number(), LOCK_EX | LOCK_NB) == 0 &&
            Names(file, descriptor))
            unlink(file.c_str());
    }
};

} // namespace

std::shared_ptr<FileSystem> SystemFiles() {
    return std::make_shared<SystemFileSystem>();
}

std::vector<std::string> NamesIn(const std::filesystem::path& folder) {
    struct Closer {
        void operator()(DIR* listing) const { closedir(listing); }
    };
    const std::unique_ptr<DIR, Closer> listing(opendir(folder.c_str()));
    std::vector<std::string> names;
    if (listing)
        while (const dirent* entry = readdir(listing.get()))
            names.emplace_back(entry->d_name);
    return names;
}
