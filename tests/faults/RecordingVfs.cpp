#include "tests/faults/RecordingVfs.h"

#include "component/storage/files/ForwardedFile.h"

#include <mutex>
#include <stdexcept>

namespace {

/// What is noted, and whether at all. SQLite gives its callbacks no place for it but the VFS itself.
struct Recorder {
    std::mutex mutex;
    bool on = false;
    std::vector<DiskEvent> events;
    std::function<void(const std::string&)> unlocked = [](const std::string&) {};
    sqlite3_vfs* real = nullptr;

    void Note(DiskEvent event) {
        const std::scoped_lock lock(mutex);
        if (on)
            events.push_back(std::move(event));
    }
};

Recorder& TheRecorder() {
    static Recorder recorder;
    return recorder;
}

struct File : ForwardedFile {
    const char* name = "";
};

const File& Of(sqlite3_file* file) {
    return static_cast<File&>(ForwardedFile::Of(file));
}

int Write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset) {
    TheRecorder().Note({DiskEvent::Kind::Write, Of(file).name, offset,
                        std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(count))});
    return Of(file).real->pMethods->xWrite(Of(file).real, bytes, count, offset);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    TheRecorder().Note({DiskEvent::Kind::Truncate, Of(file).name, size});
    return Of(file).real->pMethods->xTruncate(Of(file).real, size);
}

int Sync(sqlite3_file* file, int flags) {
    TheRecorder().Note({DiskEvent::Kind::Sync, Of(file).name});
    return Of(file).real->pMethods->xSync(Of(file).real, flags);
}

int Unlock(sqlite3_file* file, int lock) {
    const int code = Of(file).real->pMethods->xUnlock(Of(file).real, lock);
    if (lock == SQLITE_LOCK_NONE)
        TheRecorder().unlocked(Of(file).name);
    return code;
}

const sqlite3_io_methods& Methods() {
    static const sqlite3_io_methods methods = [] {
        sqlite3_io_methods recording = ForwardingMethods();
        recording.xWrite = Write;
        recording.xTruncate = Truncate;
        recording.xSync = Sync;
        recording.xUnlock = Unlock;
        return recording;
    }();
    return methods;
}

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    File& own = MakeForwarded<File>(file);
    own.name = name != nullptr ? name : "";
    const int code = TheRecorder().real->xOpen(TheRecorder().real, name, own.real, flags, outFlags);
    own.base.pMethods = own.real->pMethods != nullptr ? &Methods() : nullptr;
    return code;
}

int Delete(sqlite3_vfs*, const char* name, int syncFolder) {
    TheRecorder().Note({DiskEvent::Kind::Delete, name});
    return TheRecorder().real->xDelete(TheRecorder().real, name, syncFolder);
}

} // namespace

void RecordingVfs::Install() {
    static sqlite3_vfs own = [] {
        TheRecorder().real = sqlite3_vfs_find(nullptr);
        sqlite3_vfs copy = *TheRecorder().real;
        copy.zName = "recording";
        copy.szOsFile = static_cast<int>(sizeof(File)) + TheRecorder().real->szOsFile;
        copy.xOpen = Open;
        copy.xDelete = Delete;
        return copy;
    }();
    if (sqlite3_vfs_register(&own, 1) != SQLITE_OK)
        throw std::runtime_error("SQLite does not take the recorder");
}

void RecordingVfs::Start() {
    const std::scoped_lock lock(TheRecorder().mutex);
    TheRecorder().events.clear();
    TheRecorder().on = true;
}

std::vector<DiskEvent> RecordingVfs::Stop() {
    const std::scoped_lock lock(TheRecorder().mutex);
    TheRecorder().on = false;
    return std::move(TheRecorder().events);
}

void RecordingVfs::OnUnlock(std::function<void(const std::string& file)> call) {
    TheRecorder().unlocked = call ? std::move(call) : [](const std::string&) {};
}
