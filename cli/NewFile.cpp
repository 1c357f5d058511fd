#include "cli/NewFile.h"

#include "base/ComponentError.h"

#include <fcntl.h>
#include <sodium.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

/// A name that no other file has; short, because the target's own may be as long as names can be.
std::string TemporaryName() {
    std::array<unsigned char, 8> random{};
    randombytes_buf(random.data(), random.size());
    std::array<char, 2 * random.size() + 1> text{};
    sodium_bin2hex(text.data(), text.size(), random.data(), random.size());
    return std::string(".atlavex.") + text.data() + ".tmp";
}

bool MeansDiskFull(int systemError) {
    return systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG;
}

} // namespace

NewFile::NewFile(std::filesystem::path target)
    : target_(std::move(target)), temporary_(target_.parent_path() / TemporaryName()) {
    std::error_code unknown; // whatever it is, opening or renaming fails on it as well
    if (std::filesystem::is_directory(target_, unknown))
        Fail(EISDIR);
    FileDescriptor descriptor(open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
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
    // Renamed while still open: on any failure the destructor finds the temporary to remove.
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0)
        Fail(errno);
    stream_.reset();
}

void NewFile::Fail(int systemError) const {
    throw ComponentError(MeansDiskFull(systemError) ? ErrorNumber::DiskFull : ErrorNumber::FileNotWritable,
                         "'" + target_.string() + "' cannot be written: " + std::strerror(systemError) + ".");
}
