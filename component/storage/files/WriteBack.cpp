#include "component/storage/files/WriteBack.h"

#ifdef __linux__

#include <fcntl.h>
#include <unistd.h>

WriteBack::~WriteBack() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

void WriteBack::Start() {
    const std::scoped_lock lock(mutex_);
    if (descriptor_ < 0)
        descriptor_ = open(file_.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor_ >= 0)
        sync_file_range(descriptor_, 0, 0, SYNC_FILE_RANGE_WRITE);
}

#else

WriteBack::~WriteBack() = default;

void WriteBack::Start() {}

#endif
