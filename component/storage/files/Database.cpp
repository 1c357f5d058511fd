#include "component/storage/files/Database.h"

#include "base/StandardErrors.h"

#include <fcntl.h>
#include <sqlite3.h>

#include <string_view>
#include <thread>

namespace {

constexpr int BusyMilliseconds = 1500;
/// As long as the eye takes an answer for an immediate one; a usual save holds its lock for less.
constexpr int BlinkMilliseconds = 100;
/// Between two looks at a lock that is waited for.
constexpr std::chrono::milliseconds LookInterval(20);
constexpr std::int64_t HeapLimit = std::int64_t{256} << 20;

ComponentError IoError(const std::string& name, int extended, int systemError) {
    if (MeansDiskFull(systemError))
        return {ErrorNumber::DiskFull, "There is no space left to write '" + name + "'."};
    const bool reading = extended == SQLITE_IOERR_READ || extended == SQLITE_IOERR_SHORT_READ;
    const std::string reason = systemError != 0 ? SystemReason(systemError) : "an input/output error";
    if (reading)
        return {ErrorNumber::FileNotReadable, "The file '" + name + "' could not be read: " + reason + "."};
    return {ErrorNumber::FileNotWritable, "The file '" + name + "' could not be written: " + reason + "."};
}

ComponentError ReadOnlyError(const std::string& name, int extended) {
    if (extended == SQLITE_READONLY_DBMOVED)
        return {ErrorNumber::FileChanged,
                "The file '" + name + "' was moved or replaced by another program."};
    if (extended == SQLITE_READONLY_ROLLBACK)
        return {ErrorNumber::FileNotReadable,
                "The file '" + name +
                    "' was left in the middle of a save and cannot be brought back, because its folder is "
                    "read-only."};
    return {ErrorNumber::FileNotWritable, "The file '" + name + "' is read-only."};
}

ComponentError ErrorOf(const std::string& name, int code, int systemError) {
    switch (code & 0xff) {
    case SQLITE_NOMEM:
        return {ErrorNumber::OutOfMemory, "There is not enough memory to work on '" + name + "'."};
    case SQLITE_FULL:
        return {ErrorNumber::DiskFull, "There is no space left to write '" + name + "'."};
    case SQLITE_IOERR:
        return IoError(name, code, systemError);
    case SQLITE_READONLY:
        return ReadOnlyError(name, code);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return {ErrorNumber::FileLocked, "The file '" + name + "' is in use by another program."};
    case SQLITE_CANTOPEN:
        return {ErrorNumber::FileNotReadable,
                "The file '" + name + "' could not be opened" +
                    (systemError != 0 ? ": " + SystemReason(systemError) : std::string()) + "."};
    case SQLITE_NOTADB:
        return {ErrorNumber::NotALibrary, "The file '" + name + "' is not a map library."};
    case SQLITE_CORRUPT:
    case SQLITE_FORMAT:
    case SQLITE_TOOBIG:
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
        return {ErrorNumber::FileDamaged, "The file '" + name + "' is damaged: its structure is broken (" +
                                              std::to_string(code) + ")."};
    default:
        return {ErrorNumber::Failed,
                "The file '" + name + "' could not be used (" + std::to_string(code) + ")."};
    }
}

/// A file from a stranger must not run code, allocate without bound or reach other files.
void Harden(sqlite3* handle) {
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    constexpr std::pair<int, int> limits[] = {{SQLITE_LIMIT_LENGTH, 64 << 20},
                                              {SQLITE_LIMIT_SQL_LENGTH, 100000},
                                              {SQLITE_LIMIT_COLUMN, 32},
                                              {SQLITE_LIMIT_EXPR_DEPTH, 20},
                                              {SQLITE_LIMIT_COMPOUND_SELECT, 3},
                                              {SQLITE_LIMIT_VDBE_OP, 25000},
                                              {SQLITE_LIMIT_FUNCTION_ARG, 8},
                                              {SQLITE_LIMIT_ATTACHED, 0},
                                              {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 50},
                                              {SQLITE_LIMIT_VARIABLE_NUMBER, 32},
                                              {SQLITE_LIMIT_TRIGGER_DEPTH, 1}};
    for (const auto& [limit, value] : limits)
        sqlite3_limit(handle, limit, value);
    sqlite3_hard_heap_limit64(HeapLimit);
}

} // namespace

void WriteBack::Start() {
#ifdef __linux__
    const std::scoped_lock lock(mutex_);
    if (!descriptor_.IsOpen())
        descriptor_ = FileDescriptor(open(file_.c_str(), O_RDONLY | O_CLOEXEC));
    if (descriptor_.IsOpen())
        sync_file_range(descriptor_.Number(), 0, 0, SYNC_FILE_RANGE_WRITE);
#endif
}

void Database::Closer::operator()(sqlite3* handle) const {
    sqlite3_close_v2(handle);
}

int Database::OnLocked(void* waiting, int timesBefore) {
    Waiting& wait = *static_cast<Waiting*>(waiting);
    const auto now = std::chrono::steady_clock::now();
    if (timesBefore == 0)
        wait.since = now;
    if (!wait.goOn(std::chrono::duration_cast<std::chrono::milliseconds>(now - wait.since)))
        return 0;
    std::this_thread::sleep_for(LookInterval);
    return 1;
}

void Database::WaitNoMore() {
    sqlite3_busy_timeout(Handle(), BusyMilliseconds);
    waiting_.reset();
}

// NOLINTNEXTLINE(readability-make-member-function-const): how the connection waits is changed.
void Database::WaitABlink() {
    if (!waiting_)
        sqlite3_busy_timeout(Handle(), BlinkMilliseconds);
}

// NOLINTNEXTLINE(readability-make-member-function-const): likewise
void Database::WaitAMoment() {
    if (!waiting_)
        sqlite3_busy_timeout(Handle(), BusyMilliseconds);
}

Database::Database(const std::filesystem::path& file, Mode mode, std::string shownName, const LockWait& wait)
    : mode_(mode), writeBack_(file), shownName_(std::move(shownName)) {
    sqlite3* raw = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_FULLMUTEX | SQLITE_OPEN_EXRESCODE;
    const int code =
        sqlite3_open_v2(file.c_str(), &raw, flags, mode == Mode::KeptScratch ? nullptr : files_.Name());
    handle_.reset(raw);
    if (code != SQLITE_OK)
        throw ErrorOf(shownName_, code, raw != nullptr ? sqlite3_system_errno(raw) : 0);
    Harden(raw);
    if (wait) {
        waiting_ = std::make_unique<Waiting>(Waiting{wait, {}});
        sqlite3_busy_handler(raw, OnLocked, waiting_.get());
    } else {
        sqlite3_busy_timeout(raw, BusyMilliseconds);
    }
    Execute("PRAGMA temp_store=MEMORY; PRAGMA mmap_size=0; PRAGMA cell_size_check=ON;"
            "PRAGMA trusted_schema=OFF; PRAGMA secure_delete=FAST;");
    // A hardened connection takes no journal_mode=OFF; in memory, none lies beside the file after a kill.
    if (mode == Mode::KeptScratch)
        Execute("PRAGMA cache_size=-8000; PRAGMA synchronous=OFF;");
    else if (mode != Mode::Existing)
        Execute("PRAGMA cache_size=-8000; PRAGMA locking_mode=EXCLUSIVE; PRAGMA journal_mode=MEMORY; PRAGMA "
                "synchronous=OFF;");
}

// NOLINTNEXTLINE(readability-make-member-function-const): what it changes is the file behind the handle.
void Database::Execute(const char* sql) {
    Check(sqlite3_exec(Handle(), sql, nullptr, nullptr, nullptr));
}

std::int64_t Database::Number(const char* sql) {
    Statement statement(*this, sql);
    if (!statement.Step())
        Damaged("a value is missing");
    return statement.Integer(0);
}

namespace {

sqlite3_file* FileOf(sqlite3* handle) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file));
    return file != nullptr && file->pMethods != nullptr ? file : nullptr;
}

} // namespace

std::int64_t Database::FileSize() const {
    sqlite3_file* file = FileOf(Handle());
    sqlite3_int64 size = 0;
    Check(file == nullptr ? SQLITE_CANTOPEN : file->pMethods->xFileSize(file, &size));
    return size;
}

Bytes Database::ReadRaw(std::int64_t offset, int length) const {
    sqlite3_file* file = FileOf(Handle());
    Bytes bytes(static_cast<std::size_t>(length));
    Check(file == nullptr ? SQLITE_CANTOPEN : file->pMethods->xRead(file, bytes.data(), length, offset));
    return bytes;
}

void Database::StartWriteBack() {
    if (mode_ != Mode::Scratch && mode_ != Mode::KeptScratch)
        writeBack_.Start();
}

bool Database::HasMoved() const {
    int moved = 0;
    sqlite3_file_control(Handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

bool Database::InTransaction() const {
    return sqlite3_get_autocommit(Handle()) == 0;
}

std::int64_t Database::RowsWritten() const {
    return sqlite3_total_changes64(Handle());
}

bool Database::IsReadOnly() const {
    return sqlite3_db_readonly(Handle(), "main") == 1;
}

void Database::Fail(int code) const {
    if ((code & 0xff) == SQLITE_CORRUPT && !files_.Refusal().empty())
        throw ComponentError(ErrorNumber::FileDamaged, "The file '" + shownName_ + "' is not opened: " +
                                                           files_.Refusal() + ". Nothing was changed.");
    int systemError = sqlite3_system_errno(Handle());
    // A failed commit has been rolled back by now, which may have overwritten the reason; the file keeps its
    // own.
    int lastError = 0;
    sqlite3_file_control(Handle(), "main", SQLITE_FCNTL_LAST_ERRNO, &lastError);
    if (code == SQLITE_IOERR_WRITE && MeansDiskFull(lastError))
        systemError = lastError;
    // It is the journal that cannot be opened then.
    if ((code & 0xff) == SQLITE_CANTOPEN && sqlite3_txn_state(Handle(), "main") == SQLITE_TXN_WRITE)
        throw IoError(shownName_, code, systemError);
    throw ErrorOf(shownName_, code, systemError);
}

void Database::Check(int code) const {
    if (code != SQLITE_OK)
        Fail(code);
}

void Database::Damaged(const std::string& reason) const {
    throw ComponentError(ErrorNumber::FileDamaged,
                         "The file '" + shownName_ + "' is damaged: " + reason + ".");
}

void Statement::Finalizer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Statement::Statement(Database& database, const char* sql) : database_(&database) {
    sqlite3_stmt* raw = nullptr;
    database.Check(sqlite3_prepare_v3(database.Handle(), sql, -1, SQLITE_PREPARE_PERSISTENT, &raw, nullptr));
    statement_.reset(raw);
}

Statement& Statement::Bind(int index, std::int64_t value) {
    database_->Check(sqlite3_bind_int64(statement_.get(), index, value));
    return *this;
}

Statement& Statement::Bind(int index, ByteSpan bytes) {
    if (bytes.size() > LongestValue)
        throw ComponentError(ErrorNumber::ImageTooLarge,
                             "The file '" + database_->ShownName() +
                                 "' cannot hold a picture or text of more than 64 megabytes.");
    // An empty span may have no address, which SQLite would take for NULL.
    static constexpr std::uint8_t nothing = 0;
    const void* data = bytes.empty() ? &nothing : bytes.data();
    database_->Check(sqlite3_bind_blob64(statement_.get(), index, data, bytes.size(), SQLITE_STATIC));
    return *this;
}

Statement& Statement::Bind(int index, const char* text) {
    database_->Check(sqlite3_bind_text(statement_.get(), index, text, -1, SQLITE_STATIC));
    return *this;
}

bool Statement::Step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW)
        return true;
    if (code != SQLITE_DONE) {
        sqlite3_reset(statement_.get());
        database_->Fail(code);
    }
    return false;
}

void Statement::Reset() {
    sqlite3_reset(statement_.get());
}

void Statement::Run() {
    while (Step()) {
    }
    Reset();
}

void Statement::RequireType(int column, int type) const {
    if (sqlite3_column_type(statement_.get(), column) != type)
        database_->Damaged("a value has the wrong type");
}

std::int64_t Statement::Integer(int column) const {
    RequireType(column, SQLITE_INTEGER);
    return sqlite3_column_int64(statement_.get(), column);
}

ByteSpan Statement::Blob(int column) const {
    RequireType(column, SQLITE_BLOB);
    const void* data = sqlite3_column_blob(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    if (data == nullptr && size > 0)
        database_->Fail(SQLITE_NOMEM);
    return {static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(size)};
}

std::string Statement::Text(int column) const {
    RequireType(column, SQLITE_TEXT);
    const unsigned char* text = sqlite3_column_text(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)};
}

Transaction::Transaction(Database& database) : database_(&database), rowsBefore_(database.RowsWritten()) {
    database.Execute("BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
    // SQLite may have rolled back by itself after an I/O error; a failure here leaves that to the journal.
    if (open_ && database_->InTransaction())
        sqlite3_exec(database_->Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::Commit() {
    database_->Execute("COMMIT");
    open_ = false;
}

Savepoint::Savepoint(Database& database) : database_(&database) {
    database.Execute("SAVEPOINT work");
}

Savepoint::~Savepoint() {
    if (open_ && database_->InTransaction())
        sqlite3_exec(database_->Handle(), "ROLLBACK TO work; RELEASE work", nullptr, nullptr, nullptr);
}

void Savepoint::Keep() {
    database_->Execute("RELEASE work");
    open_ = false;
}
