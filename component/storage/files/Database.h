#pragma once

#include "base/Bytes.h"
#include "base/ComponentError.h"
#include "base/FileDescriptor.h"
#include "component/storage/files/GuardedVfs.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

/// Asked again and again while another program's lock stands in the way, with how long it has done so:
/// whether to go on waiting. By the thread that waits; must not throw.
using LockWait = std::function<bool(std::chrono::milliseconds waited)>;

/// Gets a large file to the disk while it is still being written, so that the sync at the end of its
/// transaction finds little left to do. It promises nothing: only that sync does. Where the system has no
/// such call, it does nothing.
class WriteBack {
public:
    explicit WriteBack(std::filesystem::path file) : file_(std::move(file)) {}

    /// Starts writing what has been changed so far and does not wait for it. By any thread.
    void Start();

private:
    std::mutex mutex_;
    std::filesystem::path file_;
    /// Closing it drops every lock that this process holds on the file: the object must outlive the database
    /// connection to it.
    FileDescriptor descriptor_;
};

/// Length of the pages of a library's database, in bytes.
inline constexpr std::int64_t PageSize = 8192;

/// One connection to an SQLite file, hardened for files that nobody vouches for. Errors are ComponentErrors
/// that name the file.
class Database {
public:
    enum class Mode {
        Existing, ///< read and write, as far as the file permits; it must exist
        Fill,     ///< an existing empty file that is filled in one go: no journal on disk, no sync of its own
        Scratch,  ///< the same for a file that never has to outlive the program
        /// A scratch, new or left behind, that outlives a killed program, though no power failure: each
        /// transaction wholly or not at all, through a journal beside it that is never synced. No guard
        /// stands before that journal: nobody but this user's own programs writes there, and space that is
        /// given back is what the guard would refuse.
        KeptScratch
    };

    /// `shownName` is the name that error sentences give; the path may be that of a temporary. Nothing to
    /// wait with: a lock is waited for a moment only.
    Database(const std::filesystem::path& file, Mode mode, std::string shownName, const LockWait& wait = {});

    sqlite3* Handle() const { return handle_.get(); }
    const std::string& ShownName() const { return shownName_; }

    /// Runs statements that give no rows.
    void Execute(const char* sql);
    /// The single number that a statement gives.
    std::int64_t Number(const char* sql);

    /// Size of the main file in bytes and bytes of it, through the descriptor that SQLite holds: opening and
    /// closing the file by another descriptor would drop SQLite's locks.
    std::int64_t FileSize() const;
    Bytes ReadRaw(std::int64_t offset, int length) const;
    /// Whether the path no longer names the file that is open.
    bool HasMoved() const;
    bool InTransaction() const;
    /// Rows written by this connection so far, also those that were rolled back since.
    std::int64_t RowsWritten() const;
    /// From now on a lock is waited for a moment only.
    void WaitNoMore();
    /// Until WaitAMoment a lock is waited for no longer than a view may take, unless a LockWait decides.
    void WaitABlink();
    void WaitAMoment();
    bool IsReadOnly() const;

    /// Many bytes have been written: starts to get them to the disk ahead of the sync that ends it all.
    void StartWriteBack();

    /// Throws the error of SQLite's last result code for this connection.
    [[noreturn]] void Fail(int code) const;
    void Check(int code) const;

    [[noreturn]] void Damaged(const std::string& reason) const;

private:
    struct Closer {
        void operator()(sqlite3* handle) const;
    };
    struct Waiting {
        LockWait goOn;
        std::chrono::steady_clock::time_point since;
    };
    static int OnLocked(void* waiting, int timesBefore);

    Mode mode_;
    WriteBack writeBack_;              // must outlive the connection
    GuardedVfs files_;                 // likewise
    std::unique_ptr<Waiting> waiting_; // likewise
    std::unique_ptr<sqlite3, Closer> handle_;
    std::string shownName_;
};

/// While it lives, others' locks stand in the way of the connection's reading after a blink.
class BlinkWait {
public:
    explicit BlinkWait(Database& database) : database_(database) { database_.WaitABlink(); }
    ~BlinkWait() { database_.WaitAMoment(); }
    BlinkWait(const BlinkWait&) = delete;
    BlinkWait& operator=(const BlinkWait&) = delete;

private:
    Database& database_;
};

/// Longest value that a file holds, in bytes; the row that it stands in takes a few more.
inline constexpr std::size_t LongestValue = (std::size_t{64} << 20) - 64;

/// A prepared statement. The database must outlive it.
class Statement {
public:
    Statement(Database& database, const char* sql);

    Statement& Bind(int index, std::int64_t value);
    /// The bytes must stay until the statement is reset. ImageTooLarge for more than LongestValue.
    Statement& Bind(int index, ByteSpan bytes);
    Statement& Bind(int index, const char* text);

    /// True when a row is there.
    bool Step();
    void Reset();
    /// Step to the end and reset, for statements that give no rows.
    void Run();

    /// Columns count from 0. FileDamaged when the column has another type: SQLite's types are per value.
    std::int64_t Integer(int column) const;
    ByteSpan Blob(int column) const;
    std::string Text(int column) const;

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    void RequireType(int column, int type) const;

    Database* database_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

/// A transaction that is rolled back unless it is committed.
class Transaction {
public:
    /// Takes the write lock at once. FileLocked when another program holds it.
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();
    /// Whether something was written in it, as far as can be told: then a journal may lie beside the file.
    bool HasWritten() const { return database_->RowsWritten() != rowsBefore_; }

private:
    Database* database_;
    std::int64_t rowsBefore_;
    bool open_ = true;
};

/// A part of a transaction (or a transaction of its own) that is undone unless it is kept.
class Savepoint {
public:
    explicit Savepoint(Database& database);
    ~Savepoint();
    Savepoint(const Savepoint&) = delete;
    Savepoint& operator=(const Savepoint&) = delete;

    void Keep();

private:
    Database* database_;
    bool open_ = true;
};
