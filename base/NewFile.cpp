#include "base/NewFile.h"

#include "base/Bytes.h"
#include "base/ComponentError.h"
#include "base/Paths.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view TemporaryStart = ".atlavex.";
constexpr std::string_view TemporaryEnding = ".tmp";

/// A name that no other file has; short, because the target's own may be as long as names can be.
std::string TemporaryName() {
    std::array<std::uint8_t, 8> random{};
    FillRandom(random);
    return std::string(TemporaryStart) + HexText(random) + std::string(TemporaryEnding);
}

bool MeansDiskFull(int systemError) {
    return systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG;
}

bool IsTemporaryName(std::string_view name) {
    constexpr std::size_t digits = 16;
    return name.size() == TemporaryStart.size() + digits + TemporaryEnding.size() &&
           name.starts_with(TemporaryStart) && name.ends_with(TemporaryEnding) &&
           name.find_first_not_of("0123456789abcdef", TemporaryStart.size()) ==
               TemporaryStart.size() + digits;
}

/// Removes a temporary unless a program holds it locked.
void RemoveIfAbandoned(const std::filesystem::path& file) {
    const FileDescriptor descriptor(open(file.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (descriptor.IsOpen() && flock(descriptor.Number(), LOCK_EX | LOCK_NB) == 0)
        unlink(file.c_str());
}

/// What killed commands left in the folder.
void SweepAbandoned(const std::filesystem::path& folder) {
    for (const std::string& name : NamesIn(folder))
        if (IsTemporaryName(name))
            RemoveIfAbandoned(folder / name);
}

/// A new file that nobody else may read: it may hold what a key protects, and stays behind when the program
/// is killed. Its lock tells others that it is in use; one that a sweeper took before that is made again.
FileDescriptor MakeLocked(const std::filesystem::path& path) {
    for (;;) {
        FileDescriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        struct stat status {};
        if (!file.IsOpen() || flock(file.Number(), LOCK_EX) != 0 || fstat(file.Number(), &status) != 0 ||
            status.st_nlink > 0)
            return file;
    }
}

/// Those of any new file, once it is complete.
void GiveUsualRights(int descriptor) {
    const mode_t mask = umask(0);
    umask(mask);
    [[maybe_unused]] const int ignored = fchmod(descriptor, 0666 & ~mask); // some file systems know no rights
}

} // namespace

NewFile::NewFile(std::filesystem::path target)
    : target_(std::move(target)), temporary_(FolderOf(target_) / TemporaryName()) {
    std::error_code unknown; // whatever it is, opening or renaming fails on it as well
    if (std::filesystem::is_directory(target_, unknown))
        Fail(EISDIR);
    SweepAbandoned(FolderOf(target_));
    FileDescriptor descriptor = MakeLocked(temporary_);
    if (!descriptor.IsOpen())
        Fail(errno);
    stream_ = OpenFileStream(std::move(descriptor), "w+b");
    if (stream_)
        return;
    const int error = errno;
    unlink(temporary_.c_str()); // the destructor of a half-made object does not run
    Fail(error);
}

NewFile::~NewFile() {
    if (!stream_)
        return;
    stream_.reset();
    std::error_code ignored;
    std::filesystem::remove(temporary_, ignored);
}

void NewFile::Commit() {
    if (std::fflush(stream_.get()) != 0 || fsync(fileno(stream_.get())) != 0)
        Fail(errno);
    GiveUsualRights(fileno(stream_.get()));
    // Renamed while still open: on any failure the destructor finds the temporary to remove.
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0)
        Fail(errno);
    stream_.reset();
}

void NewFile::Fail(int systemError) const {
    throw ComponentError(MeansDiskFull(systemError) ? ErrorNumber::DiskFull : ErrorNumber::FileNotWritable,
                         "'" + target_.string() + "' cannot be written: " + std::strerror(systemError) + ".");
}
