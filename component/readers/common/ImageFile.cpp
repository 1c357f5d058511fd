#include "component/readers/common/ImageFile.h"

#include "base/ComponentError.h"
#include "base/StandardErrors.h"
#include "component/readers/common/ImageError.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

namespace {

[[noreturn]] void ThrowSystemError(const std::filesystem::path& path, int number) {
    const ErrorNumber kind =
        number == ENOENT || number == ENOTDIR ? ErrorNumber::FileNotFound : ErrorNumber::FileNotReadable;
    ThrowImageError(kind, path,
                    kind == ErrorNumber::FileNotFound ? "there is no such file" : SystemReason(number));
}

} // namespace

ImageFile::ImageFile(std::filesystem::path path) : path_(std::move(path)) {
    // O_NONBLOCK: a named pipe would keep the program waiting for its writer. It changes nothing for files.
    FileDescriptor descriptor(open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!descriptor.IsOpen())
        ThrowSystemError(path_, errno);
    stream_ = OpenFileStream(std::move(descriptor), "rb");
    if (!stream_)
        ThrowSystemError(path_, errno);
    struct stat status {};
    if (fstat(fileno(stream_.get()), &status) != 0)
        ThrowSystemError(path_, errno);
    if (S_ISDIR(status.st_mode))
        ThrowImageError(ErrorNumber::FileNotReadable, path_, "it is a folder");
    if (!S_ISREG(status.st_mode))
        ThrowImageError(ErrorNumber::FileNotReadable, path_, "it is a device or a pipe, not a file");
    size_ = status.st_size;
    if (size_ == 0)
        ThrowImageError(ErrorNumber::ImageNotReadable, path_, "the file is empty");
}

void ImageFile::Seek(std::int64_t offset) {
    if (fseeko(stream_.get(), offset, SEEK_SET) != 0)
        ThrowSystemError(path_, errno);
}

std::size_t ImageFile::ReadSome(std::span<std::uint8_t> bytes) {
    const std::size_t read = std::fread(bytes.data(), 1, bytes.size(), stream_.get());
    if (read < bytes.size() && std::ferror(stream_.get()) != 0)
        ThrowSystemError(path_, errno);
    return read;
}

void ImageFile::Read(std::span<std::uint8_t> bytes, const std::string& what) {
    if (ReadSome(bytes) < bytes.size())
        ThrowDamaged(path_, "the file ends in " + what);
}
