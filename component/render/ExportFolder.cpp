#include "component/render/ExportFolder.h"

#include "base/ComponentError.h"
#include "base/StandardErrors.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

// The only place of this folder that speaks to the operating system.

namespace {

bool IsRegular(const FileDescriptor& file) {
    struct stat status {};
    return fstat(file.Number(), &status) == 0 && S_ISREG(status.st_mode);
}

bool WriteAll(int descriptor, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

/// What keeps a folder from being made that is not there: a disk that is full or may not be written to is why
/// whoever was to make it could not. Leaves no folder behind.
int WhyMissing(std::filesystem::path path) {
    for (; !path.empty(); path = path.parent_path()) {
        if (mkdir(path.c_str(), 0777) == 0)
            rmdir(path.c_str());
        else if (errno == ENOENT)
            continue; // its own parent is missing, too
        else if (errno != EEXIST)
            return errno;
        break;
    }
    return ENOENT;
}

} // namespace

ExportFolder::ExportFolder(const std::filesystem::path& path)
    : path_(path), folder_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (folder_.IsOpen())
        return;
    const int error = errno == ENOENT ? WhyMissing(path) : errno;
    throw ComponentError(WriteErrorNumber(error),
                         "The folder \"" + path.string() + "\" cannot be used: " + SystemReason(error) + ".");
}

void ExportFolder::MakeFolder(const std::string& name) const {
    struct stat status {};
    if (mkdirat(folder_.Number(), name.c_str(), 0777) == 0)
        return;
    const int error = errno;
    if (error == EEXIST && fstatat(folder_.Number(), name.c_str(), &status, 0) == 0 &&
        S_ISDIR(status.st_mode))
        return;
    ThrowNotWritable(name, error);
}

void ExportFolder::Write(const std::string& name, std::span<const std::uint8_t> bytes) const {
    WriteNew(name, bytes, false);
}

void ExportFolder::Replace(const std::string& name, std::string_view text) const {
    const std::string temporary = "." + name + ".tmp";
    WriteNew(temporary, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, true);
    if (renameat(folder_.Number(), temporary.c_str(), folder_.Number(), name.c_str()) != 0) {
        const int error = errno;
        unlinkat(folder_.Number(), temporary.c_str(), 0);
        ThrowNotWritable(name, error);
    }
}

void ExportFolder::Sync() const {
    // One call for the whole file system costs less than one for each of a hundred thousand tiles.
    if (syncfs(folder_.Number()) != 0)
        ThrowNotWritable("", errno);
}

void ExportFolder::WriteNew(const std::string& name, std::span<const std::uint8_t> bytes, bool toDisk) const {
    // Not blocking: a pipe in the file's place would wait for a reader.
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    FileDescriptor file(openat(folder_.Number(), name.c_str(), flags, 0666));
    if (!file.IsOpen())
        ThrowNotWritable(name, errno);
    errno = 0;
    const bool written = WriteAll(file.Number(), bytes) && (!toDisk || fsync(file.Number()) == 0);
    if (written && file.Close())
        return;
    const int error = errno;
    unlinkat(folder_.Number(), name.c_str(), 0);
    ThrowNotWritable(name, error);
}

std::optional<std::string> ExportFolder::Read(const std::string& name, std::size_t largest) const {
    const FileDescriptor file(openat(folder_.Number(), name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.IsOpen() && errno == ENOENT)
        return std::nullopt;
    const std::string path = (path_ / name).string();
    if (!file.IsOpen() || !IsRegular(file))
        throw ComponentError(ErrorNumber::FileNotReadable, "\"" + path + "\" cannot be read.");
    std::string text(largest + 1, '\0');
    std::size_t size = 0;
    for (ssize_t count = 1; count != 0 && size < text.size();) {
        count = read(file.Number(), text.data() + size, text.size() - size);
        if (count < 0 && errno != EINTR)
            throw ComponentError(ErrorNumber::FileNotReadable,
                                 "\"" + path + "\" cannot be read: " + SystemReason(errno) + ".");
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    if (size > largest)
        throw ComponentError(ErrorNumber::FileNotReadable, "\"" + path + "\" is too large.");
    text.resize(size);
    return text;
}

void ExportFolder::ThrowNotWritable(const std::string& name, int error) const {
    const std::string path = (path_ / name).string();
    if (MeansDiskFull(error))
        throw ComponentError(ErrorNumber::DiskFull,
                             "\"" + path + "\" cannot be written: the disk is full or a limit is reached.");
    throw ComponentError(ErrorNumber::FileNotWritable, "\"" + path + "\" cannot be written: " +
                                                           SystemReason(error == 0 ? EIO : error) + ".");
}
