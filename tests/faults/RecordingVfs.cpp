#include "tests/faults/RecordingVfs.h"

#include <sqlite3.h>

#include <cstring>
#include <mutex>
#include <new>
#include <stdexcept>

namespace {

/// What is noted, and whether at all. SQLite gives its callbacks no place for it but the VFS itself.
struct Recorder {
    std::mutex mutex;
    bool on = false;
    std::vector<DiskEvent> events;
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

/// SQLite allocates this together with the real file that follows it.
struct File {
    sqlite3_file base;
    const char* name;
    sqlite3_file* real;
};

File& Of(sqlite3_file* file) {
    return *reinterpret_cast<File*>(file);
}

int Close(sqlite3_file* file) {
    return Of(file).real->pMethods->xClose(Of(file).real);
}
int Read(sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset) {
    return Of(file).real->pMethods->xRead(Of(file).real, bytes, count, offset);
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
int Size(sqlite3_file* file, sqlite3_int64* size) {
    return Of(file).real->pMethods->xFileSize(Of(file).real, size);
}
int Lock(sqlite3_file* file, int lock) {
    return Of(file).real->pMethods->xLock(Of(file).real, lock);
}
int Unlock(sqlite3_file* file, int lock) {
    return Of(file).real->pMethods->xUnlock(Of(file).real, lock);
}
int CheckLock(sqlite3_file* file, int* held) {
    return Of(file).real->pMethods->xCheckReservedLock(Of(file).real, held);
}
int Control(sqlite3_file* file, int code, void* argument) {
    return Of(file).real->pMethods->xFileControl(Of(file).real, code, argument);
}
int SectorSize(sqlite3_file* file) {
    return Of(file).real->pMethods->xSectorSize(Of(file).real);
}
int Characteristics(sqlite3_file* file) {
    return Of(file).real->pMethods->xDeviceCharacteristics(Of(file).real);
}

const sqlite3_io_methods& Methods() {
    static const sqlite3_io_methods methods = [] {
        sqlite3_io_methods filled{};
        filled.iVersion = 1;
        filled.xClose = Close;
        filled.xRead = Read;
        filled.xWrite = Write;
        filled.xTruncate = Truncate;
        filled.xSync = Sync;
        filled.xFileSize = Size;
        filled.xLock = Lock;
        filled.xUnlock = Unlock;
        filled.xCheckReservedLock = CheckLock;
        filled.xFileControl = Control;
        filled.xSectorSize = SectorSize;
        filled.xDeviceCharacteristics = Characteristics;
        return filled;
    }();
    return methods;
}

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    File& own = *new (file) File{};
    own.name = name != nullptr ? name : "";
    own.real = reinterpret_cast<sqlite3_file*>(&own + 1);
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
