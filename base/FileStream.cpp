#include "base/FileStream.h"

void CloseFileStream::operator()(std::FILE* stream) const noexcept {
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): this is how the owner lets go of what it owns
    static_cast<void>(std::fclose(stream));
}

FileStream OpenFileStream(FileDescriptor descriptor, const char* mode) {
    FileStream stream(fdopen(descriptor.Number(), mode));
    if (stream)
        descriptor.Release();
    return stream;
}
