#include "component/storage/files/ForwardedFile.h"

namespace {

sqlite3_file* Real(sqlite3_file* file) {
    return ForwardedFile::Of(file).real;
}

int Close(sqlite3_file* file) {
    return Real(file)->pMethods->xClose(Real(file));
}

int Read(sqlite3_file* file, void* bytes, int count, sqlite3_int64 offset) {
    return Real(file)->pMethods->xRead(Real(file), bytes, count, offset);
}

int Write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset) {
    return Real(file)->pMethods->xWrite(Real(file), bytes, count, offset);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    return Real(file)->pMethods->xTruncate(Real(file), size);
}

int Sync(sqlite3_file* file, int flags) {
    return Real(file)->pMethods->xSync(Real(file), flags);
}

int Size(sqlite3_file* file, sqlite3_int64* size) {
    return Real(file)->pMethods->xFileSize(Real(file), size);
}

int Lock(sqlite3_file* file, int lock) {
    return Real(file)->pMethods->xLock(Real(file), lock);
}

int Unlock(sqlite3_file* file, int lock) {
    return Real(file)->pMethods->xUnlock(Real(file), lock);
}

int CheckLock(sqlite3_file* file, int* held) {
    return Real(file)->pMethods->xCheckReservedLock(Real(file), held);
}

int Control(sqlite3_file* file, int code, void* argument) {
    return Real(file)->pMethods->xFileControl(Real(file), code, argument);
}

int SectorSize(sqlite3_file* file) {
    return Real(file)->pMethods->xSectorSize(Real(file));
}

int Characteristics(sqlite3_file* file) {
    return Real(file)->pMethods->xDeviceCharacteristics(Real(file));
}

} // namespace

sqlite3_io_methods ForwardingMethods() {
    sqlite3_io_methods methods{};
    methods.iVersion = 1;
    methods.xClose = Close;
    methods.xRead = Read;
    methods.xWrite = Write;
    methods.xTruncate = Truncate;
    methods.xSync = Sync;
    methods.xFileSize = Size;
    methods.xLock = Lock;
    methods.xUnlock = Unlock;
    methods.xCheckReservedLock = CheckLock;
    methods.xFileControl = Control;
    methods.xSectorSize = SectorSize;
    methods.xDeviceCharacteristics = Characteristics;
    return methods;
}
