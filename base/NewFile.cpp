#include "base/NewFile.h"

#include "base/ComponentError.h"
#include "base/Paths.h"
#include "base/StandardErrors.h"
#include "base/TemporaryFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace {

/// Short, because the target's own name may be as long as names can be.
constexpr const char* TemporaryStart = ".atlavex.";

/// What killed commands left in the folder.
void SweepAbandoned(const std::filesystem::path& folder) {
    for (const std::filesystem::path& file : TemporariesIn(folder, TemporaryStart))
        RemoveIfAbandoned(file);
}

} // namespace

NewFile::NewFile(std::filesystem::path target)
    : target_(std::move(target)), temporary_(FolderOf(target_) / TemporaryName(TemporaryStart)) {
    std::error_code unknown; // whatever it is, opening or renaming fails on it as well
    if (std::filesystem::is_directory(target_, unknown))
        Fail(EISDIR);
    SweepAbandoned(FolderOf(target_));
    FileDescriptor descriptor = MakeLockedFile(temporary_);
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
    // Those of any new file, once it is complete; some file systems know no rights.
    [[maybe_unused]] const int ignored = fchmod(fileno(stream_.get()), UsualMode());
    // Renamed while still open: on any failure the destructor finds the temporary to remove.
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0)
        Fail(errno);
    stream_.reset();
}

void NewFile::Fail(int systemError) const {
    throw ComponentError(WriteErrorNumber(systemError),
                         "'" + target_.string() + "' cannot be written: " + SystemReason(systemError) + ".");
}
