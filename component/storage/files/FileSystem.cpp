#include "component/storage/files/FileSystem.h"

#include "base/ComponentError.h"
#include "base/StandardErrors.h"
#include "base/TemporaryFile.h"
#include "component/storage/files/FileRights.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

[[noreturn]] void Fail(const std::filesystem::path& file, int error) {
    const std::string name = file.string();
    if (MeansDiskFull(error))
        throw ComponentError(ErrorNumber::DiskFull, "There is no space left to write '" + name + "'.");
    throw ComponentError(ErrorNumber::FileNotWritable,
                         "The file '" + name + "' could not be written: " + SystemReason(error) + ".");
}

void Check(bool succeeded, const std::filesystem::path& file) {
    if (!succeeded)
        Fail(file, errno);
}

FileDescriptor MakeLocked(const std::filesystem::path& path) {
    FileDescriptor file = MakeLockedFile(path);
    Check(file.IsOpen(), path);
    return file;
}

class SystemLockedFile : public FileSystem::LockedFile {
public:
    explicit SystemLockedFile(const std::filesystem::path& file)
        : path_(file), descriptor_(MakeLocked(file)) {}

    void Sync() override { Check(fsync(descriptor_.Number()) == 0, path_); }

    void CopyRightsOf(const std::filesystem::path& other) override {
        CopyRights(descriptor_.Number(), other);
    }

private:
    std::filesystem::path path_;
    FileDescriptor descriptor_;
};

/// FAT and some network file systems know one name a file.
bool LacksSecondNames(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK;
}

bool CopyBytes(int from, int to) {
    std::vector<char> buffer(std::size_t{1} << 20);
    for (;;) {
        const ssize_t count = read(from, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        for (ssize_t done = 0; done < count;) {
            const ssize_t written = write(to, buffer.data() + done, static_cast<std::size_t>(count - done));
            if (written < 0 && errno != EINTR)
                return false;
            done += std::max<ssize_t>(written, 0);
        }
    }
}

/// A durable copy in place of a second name; false when the name is taken. Of one that fails nothing stays.
bool Copy(const std::filesystem::path& file, FileDescriptor& from, const std::filesystem::path& name) {
    from = FileDescriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    Check(from.IsOpen(), file);
    const FileDescriptor to(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!to.IsOpen() && errno == EEXIST)
        return false;
    Check(to.IsOpen(), name);
    if (!CopyBytes(from.Number(), to.Number()) || fsync(to.Number()) != 0) {
        const int error = errno;
        unlink(name.c_str());
        Fail(name, error);
    }
    CopyRights(to.Number(), file);
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
        return Copy(file, copied_, name);
    }

    void SyncFolder(const std::filesystem::path& folder) override {
        const FileDescriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        Check(descriptor.IsOpen(), folder);
        // Some file systems do not know this call for folders; they order names by themselves.
        Check(fsync(descriptor.Number()) == 0 || errno == EINVAL, folder);
    }

    void Remove(const std::filesystem::path& file) noexcept override { unlink(file.c_str()); }

    void RemoveIfAbandoned(const std::filesystem::path& file) noexcept override { ::RemoveIfAbandoned(file); }

private:
    /// What was copied last. Closed at once, it would drop the lock under which the file is replaced.
    FileDescriptor copied_;
};

} // namespace

std::shared_ptr<FileSystem> SystemFiles() {
    return std::make_shared<SystemFileSystem>();
}
