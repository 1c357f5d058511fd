#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

struct sqlite3_file;
struct sqlite3_vfs;

/// SQLite's way to the files of one connection, with a guard before the journal beside the database. SQLite
/// finds a journal by its name and takes it for its own. So for a connection whose file is no longer what its
/// path names there is no journal: the one that lies there belongs to the file that took its place. And a
/// journal that cannot be this file's own, or names other files to be removed, is refused before SQLite acts
/// on it. Logs (-wal) are never looked at.
///
/// Every connection has an object of its own, which must outlive it.
class GuardedVfs {
public:
    GuardedVfs();
    ~GuardedVfs();
    GuardedVfs(const GuardedVfs&) = delete;
    GuardedVfs& operator=(const GuardedVfs&) = delete;

    /// The name by which sqlite3_open_v2 finds it.
    const char* Name() const { return name_.c_str(); }
    /// Why the last journal was refused: a sentence; empty when none was.
    const std::string& Refusal() const { return refusal_; }

private:
    struct Calls;
    struct File;

    int Open(const char* name, File& file, int flags, int* outFlags);
    int OpenJournal(const char* name, File& file, int flags, int* outFlags);
    int Delete(const char* name, int syncFolder);
    int Access(const char* name, int flags, int* result);
    void CloseMain(const sqlite3_file* file);

    bool IsJournal(const char* name) const { return journal_ == name; }
    /// Whether the path names another file than the open one. Asked anew at each use of a journal.
    bool HasMoved() const;
    void RememberJournal();
    bool IsRememberedJournal() const;

    struct Deleter {
        void operator()(sqlite3_vfs* vfs) const;
    };
    sqlite3_vfs* real_;
    std::string name_;
    std::unique_ptr<sqlite3_vfs, Deleter> vfs_;
    sqlite3_file* main_ = nullptr;
    std::string journal_; ///< path of the journal
    /// The journal that this connection has opened last, by device and inode.
    std::optional<std::pair<std::uint64_t, std::uint64_t>> opened_;
    std::string refusal_;
};
