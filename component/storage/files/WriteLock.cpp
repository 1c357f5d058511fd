#include "component/storage/files/WriteLock.h"

#include "base/ComponentError.h"

#include <sqlite3.h>

#include <cstddef>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr int Attempts = 30;
constexpr int MicrosecondsBetween = 50000;

} // namespace

/// The file as SQLite's own way to the system opens it, so that SQLite's other connections of this process to
/// the same file keep their locks when it is closed.
class WriteLock::Held {
public:
    explicit Held(const std::filesystem::path& path)
        : vfs_(sqlite3_vfs_find(nullptr)),
          name_(sqlite3_create_filename(path.c_str(), (path.string() + "-journal").c_str(),
                                        (path.string() + "-wal").c_str(), 0, nullptr)) {
        if (vfs_ == nullptr || name_ == nullptr)
            throw std::bad_alloc();
        const auto size = static_cast<std::size_t>(vfs_->szOsFile);
        place_.resize((size + sizeof(std::max_align_t) - 1) / sizeof(std::max_align_t));
        file_ = reinterpret_cast<sqlite3_file*>(place_.data());
        int flags = 0;
        isOpen_ = vfs_->xOpen(vfs_, name_, file_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_MAIN_DB, &flags) ==
                      SQLITE_OK &&
                  file_->pMethods != nullptr;
        isWritable_ = isOpen_ && (flags & SQLITE_OPEN_READONLY) == 0;
    }
    ~Held() {
        if (isOpen_) {
            file_->pMethods->xUnlock(file_, SQLITE_LOCK_NONE);
            file_->pMethods->xClose(file_);
        }
        sqlite3_free_filename(name_);
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    /// False when another program holds it.
    bool Acquire() {
        if (!isWritable_)
            return true;
        for (int attempt = 0; attempt < Attempts; ++attempt) {
            if (Lock(SQLITE_LOCK_SHARED) != SQLITE_BUSY && Lock(SQLITE_LOCK_RESERVED) != SQLITE_BUSY)
                return true;
            file_->pMethods->xUnlock(file_, SQLITE_LOCK_NONE);
            vfs_->xSleep(vfs_, MicrosecondsBetween);
        }
        return false;
    }

private:
    int Lock(int level) { return file_->pMethods->xLock(file_, level) & 0xff; }

    sqlite3_vfs* vfs_;
    sqlite3_filename name_;
    std::vector<std::max_align_t> place_;
    sqlite3_file* file_ = nullptr;
    bool isOpen_ = false;
    bool isWritable_ = false;
};

WriteLock::WriteLock(const std::filesystem::path& file) {
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(file, unknown)))
        return;
    held_ = std::make_unique<Held>(file);
    if (!held_->Acquire())
        throw ComponentError(ErrorNumber::FileLocked,
                             "The file '" + file.string() + "' is being written by another program.");
}

WriteLock::~WriteLock() = default;
