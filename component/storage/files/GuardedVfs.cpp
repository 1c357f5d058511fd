#include "component/storage/files/GuardedVfs.h"

#include "component/storage/files/ForwardedFile.h"
#include "component/storage/files/JournalCheck.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <new>

struct GuardedVfs::File : ForwardedFile {
    GuardedVfs* owner = nullptr;
};

/// What SQLite calls. All that is not about the journal is handed on.
struct GuardedVfs::Calls {
    static GuardedVfs& Of(sqlite3_vfs* vfs) { return *static_cast<GuardedVfs*>(vfs->pAppData); }
    static sqlite3_vfs* Real(sqlite3_vfs* vfs) { return Of(vfs).real_; }

    static int Close(sqlite3_file* file) {
        const File& own = static_cast<File&>(ForwardedFile::Of(file));
        own.owner->CloseMain(own.real);
        return own.real->pMethods->xClose(own.real);
    }
    static const sqlite3_io_methods& Methods() {
        static const sqlite3_io_methods methods = [] {
            sqlite3_io_methods guarded = ForwardingMethods();
            guarded.xClose = Close;
            return guarded;
        }();
        return methods;
    }

    static int Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
        File& own = MakeForwarded<File>(file);
        own.owner = &Of(vfs);
        const int code = Of(vfs).Open(name, own, flags, outFlags);
        own.base.pMethods = code == SQLITE_OK ? &Methods() : nullptr;
        return code;
    }
    static int Delete(sqlite3_vfs* vfs, const char* name, int syncFolder) {
        return Of(vfs).Delete(name, syncFolder);
    }
    static int Access(sqlite3_vfs* vfs, const char* name, int flags, int* result) {
        return Of(vfs).Access(name, flags, result);
    }
    static int FullPath(sqlite3_vfs* vfs, const char* name, int size, char* path) {
        return Real(vfs)->xFullPathname(Real(vfs), name, size, path);
    }
    static int Randomness(sqlite3_vfs* vfs, int size, char* bytes) {
        return Real(vfs)->xRandomness(Real(vfs), size, bytes);
    }
    static int Sleep(sqlite3_vfs* vfs, int microseconds) {
        return Real(vfs)->xSleep(Real(vfs), microseconds);
    }
    static int CurrentTime(sqlite3_vfs* vfs, double* time) {
        return Real(vfs)->xCurrentTime(Real(vfs), time);
    }
    static int LastError(sqlite3_vfs* vfs, int size, char* text) {
        return Real(vfs)->xGetLastError(Real(vfs), size, text);
    }

    static sqlite3_vfs Fill(GuardedVfs& owner) {
        sqlite3_vfs filled{};
        filled.iVersion = 1;
        filled.szOsFile = static_cast<int>(sizeof(File)) + owner.real_->szOsFile;
        filled.mxPathname = owner.real_->mxPathname;
        filled.zName = owner.name_.c_str();
        filled.pAppData = &owner;
        filled.xOpen = Open;
        filled.xDelete = Delete;
        filled.xAccess = Access;
        filled.xFullPathname = FullPath;
        filled.xRandomness = Randomness;
        filled.xSleep = Sleep;
        filled.xCurrentTime = CurrentTime;
        filled.xGetLastError = LastError;
        return filled;
    }
};

namespace {

std::string UniqueName(const void* object) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "atlavex-%p", object);
    return text.data();
}

} // namespace

void GuardedVfs::Deleter::operator()(sqlite3_vfs* vfs) const {
    sqlite3_vfs_unregister(vfs);
    delete vfs; // NOLINT(cppcoreguidelines-owning-memory): this is its owner
}

GuardedVfs::GuardedVfs() : name_(UniqueName(this)) {
    // The first call that needs SQLite: it has no files yet when it could not be started.
    real_ = sqlite3_vfs_find(nullptr);
    if (real_ == nullptr)
        throw std::bad_alloc();
    vfs_.reset(new sqlite3_vfs(Calls::Fill(*this)));
    if (sqlite3_vfs_register(vfs_.get(), 0) != SQLITE_OK)
        throw std::bad_alloc();
}

GuardedVfs::~GuardedVfs() = default;

int GuardedVfs::Open(const char* name, File& file, int flags, int* outFlags) {
    if ((flags & SQLITE_OPEN_MAIN_JOURNAL) != 0)
        return OpenJournal(name, file, flags, outFlags);
    if ((flags & (SQLITE_OPEN_SUPER_JOURNAL | SQLITE_OPEN_WAL)) != 0)
        return SQLITE_CANTOPEN;
    const int code = real_->xOpen(real_, name, file.real, flags, outFlags);
    if (code == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_DB) != 0) {
        main_ = file.real;
        journal_ = std::string(name) + "-journal";
    }
    return code;
}

int GuardedVfs::OpenJournal(const char* name, File& file, int flags, int* outFlags) {
    if (!IsJournal(name) || HasMoved())
        return SQLITE_READONLY_DBMOVED;
    if (const int code = real_->xOpen(real_, name, file.real, flags, outFlags); code != SQLITE_OK)
        return code;
    // Looked at once more: what took the file's place since would be the owner of what was opened.
    int code = HasMoved() ? SQLITE_READONLY_DBMOVED : SQLITE_OK;
    if (code == SQLITE_OK && (flags & SQLITE_OPEN_CREATE) == 0)
        if (const std::string reason = ReasonAgainstJournal(*file.real, *main_); !reason.empty()) {
            refusal_ = "the journal '" + journal_ + "' beside it " + reason;
            code = SQLITE_CORRUPT;
        }
    if (code == SQLITE_OK)
        RememberJournal();
    else
        file.real->pMethods->xClose(file.real);
    return code;
}

int GuardedVfs::Delete(const char* name, int syncFolder) {
    if (!IsJournal(name) || !IsRememberedJournal())
        return SQLITE_IOERR_DELETE;
    opened_.reset();
    return real_->xDelete(real_, name, syncFolder);
}

int GuardedVfs::Access(const char* name, int flags, int* result) {
    *result = 0;
    if (!IsJournal(name))
        return SQLITE_OK;
    refusal_.clear();
    // In this order: a journal that was there while the path still named the file is the file's.
    const int code = real_->xAccess(real_, name, flags, result);
    if (code == SQLITE_OK && *result != 0 && HasMoved())
        *result = 0;
    return code;
}

void GuardedVfs::CloseMain(const sqlite3_file* file) {
    if (file == main_)
        main_ = nullptr;
}

bool GuardedVfs::HasMoved() const {
    int moved = 0;
    if (main_ != nullptr)
        main_->pMethods->xFileControl(main_, SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

void GuardedVfs::RememberJournal() {
    struct stat status {};
    opened_.reset();
    if (stat(journal_.c_str(), &status) == 0)
        opened_.emplace(status.st_dev, status.st_ino);
}

bool GuardedVfs::IsRememberedJournal() const {
    struct stat status {};
    return opened_ && (stat(journal_.c_str(), &status) != 0 ||
                       *opened_ == std::pair<std::uint64_t, std::uint64_t>(status.st_dev, status.st_ino));
}
