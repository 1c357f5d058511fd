#include "component/imaging/SpoolFile.h"

#include "base/ComponentError.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace {

[[noreturn]] void ThrowWriteError(int number) {
    const bool full = number == ENOSPC || number == EDQUOT || number == EFBIG;
    throw ComponentError(full ? ErrorNumber::DiskFull : ErrorNumber::FileNotWritable,
                         "The temporary file of an image could not be written: " +
                             std::generic_category().message(number) + ".");
}

} // namespace

SpoolFile::SpoolFile() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error)
        ThrowWriteError(error.value());
    std::string name = (folder / "quorvant-image-XXXXXX").string();
    descriptor_ = FileDescriptor(mkstemp(name.data()));
    if (!descriptor_.IsOpen())
        ThrowWriteError(errno);
    unlink(name.c_str());
}

void SpoolFile::Write(std::int64_t offset, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = pwrite(descriptor_.Number(), bytes.data(), bytes.size(), offset);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            ThrowWriteError(written < 0 ? errno : ENOSPC);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        offset += written;
    }
}

void SpoolFile::Read(std::int64_t offset, std::span<std::uint8_t> bytes) const {
    while (!bytes.empty()) {
        const ssize_t read = pread(descriptor_.Number(), bytes.data(), bytes.size(), offset);
        if (read < 0 && errno == EINTR)
            continue;
        if (read < 0)
            throw ComponentError(ErrorNumber::FileNotReadable,
                                 "The temporary file of an image could not be read: " +
                                     std::generic_category().message(errno) + ".");
        if (read == 0) {
            std::ranges::fill(bytes, std::uint8_t{0});
            return;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(read));
        offset += read;
    }
}
