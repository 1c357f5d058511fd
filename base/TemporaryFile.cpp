#include "base/TemporaryFile.h"

#include "base/Bytes.h"
#include "base/Paths.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

namespace {

constexpr std::size_t RandomDigits = 16;
constexpr std::string_view Ending = ".tmp";

bool IsTemporaryName(const std::string& name, const std::string& start) {
    return name.size() == start.size() + RandomDigits + Ending.size() && name.starts_with(start) &&
           name.ends_with(Ending) &&
           name.find_first_not_of("0123456789abcdef", start.size()) == start.size() + RandomDigits;
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

} // namespace

std::string TemporaryName(const std::string& start) {
    std::array<std::uint8_t, RandomDigits / 2> random{};
    FillRandom(random);
    return start + HexText(random) + std::string(Ending);
}

std::vector<std::filesystem::path> TemporariesIn(const std::filesystem::path& folder,
                                                 const std::string& start) {
    std::vector<std::filesystem::path> temporaries;
    for (const std::string& name : NamesIn(folder))
        if (IsTemporaryName(name, start))
            temporaries.push_back(folder / name);
    return temporaries;
}

/// No call of the system makes a file and its lock at once, and a sweeper may take the file for an abandoned
/// one in between and remove its name. Both decide under the lock and by the name: whoever holds the lock of
/// a file that still has its name owns it, and a maker whose file lost its name makes another.
FileDescriptor MakeLockedFile(const std::filesystem::path& file) {
    for (;;) {
        FileDescriptor made(open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!made.IsOpen())
            return made;
        if (!Lock(made)) {
            const int error = errno;
            unlink(file.c_str());
            errno = error;
            return {};
        }
        if (Names(file, made))
            return made;
    }
}

FileDescriptor LockAbandoned(const std::filesystem::path& file) noexcept {
    FileDescriptor found(open(file.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    // Between opening and locking, its maker may have put it in its place, or another have swept it; the name
    // is then gone, or that of a file that was made since.
    const bool held = found.IsOpen() && flock(found.Number(), LOCK_EX | LOCK_NB) == 0 && Names(file, found);
    return held ? std::move(found) : FileDescriptor();
}

void RemoveIfAbandoned(const std::filesystem::path& file) noexcept {
    if (const FileDescriptor held = LockAbandoned(file); held.IsOpen())
        unlink(file.c_str());
}

mode_t UsualMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}
