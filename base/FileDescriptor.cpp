#include "base/FileDescriptor.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
        CloseQuietly();
        number_ = other.Release();
    }
    return *this;
}

int FileDescriptor::Release() noexcept {
    return std::exchange(number_, -1);
}

bool FileDescriptor::Close() noexcept {
    // Not tried again after an error: the number is free by then, and may already be another file's.
    return close(Release()) == 0;
}

void FileDescriptor::CloseQuietly() noexcept {
    if (!IsOpen())
        return;
    const int before = errno;
    Close();
    errno = before;
}
