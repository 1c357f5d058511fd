#include "component/storage/Schema.h"

#include "component/storage/FileHeader.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

struct TableText {
    const char* name;
    const char* sql;
};

/// The stored texts must equal these byte for byte, so that no file brings a view, trigger or index along.
constexpr std::array<TableText, 6> Tables = {{
    {"library", "CREATE TABLE library(id INTEGER PRIMARY KEY, header BLOB NOT NULL, mac BLOB NOT NULL)"},
    {"map", "CREATE TABLE map(id INTEGER PRIMARY KEY, record BLOB NOT NULL)"},
    {"icon", "CREATE TABLE icon(id INTEGER PRIMARY KEY, record BLOB NOT NULL)"},
    {"metadata", "CREATE TABLE metadata(id INTEGER PRIMARY KEY, record BLOB NOT NULL)"},
    {"tile_index", "CREATE TABLE tile_index(id INTEGER PRIMARY KEY, data BLOB NOT NULL)"},
    {"blob", "CREATE TABLE blob(id INTEGER PRIMARY KEY, data BLOB NOT NULL)"},
}};

/// What a kept scratch has beside the tables of a library.
constexpr TableText UnsavedTable{"unsaved",
                                 "CREATE TABLE unsaved(id INTEGER PRIMARY KEY, data BLOB NOT NULL)"};

/// Giving pages back takes longer by the square of their number.
constexpr std::int64_t ScratchPageSize = 2 * PageSize;

constexpr std::string_view SqliteMagic("SQLite format 3\0", 16);
constexpr int SqliteHeaderSize = 100;

/// What the database header of every library says, by the database file format's own offsets.
struct HeaderField {
    std::size_t offset;
    std::size_t length;
    std::int64_t value;
};

constexpr std::array<HeaderField, 9> FixedFields = {{
    {16, 2, PageSize},
    {18, 2, 0x0101},   // rollback journal, for writing and for reading: never a log
    {20, 1, 0},        // no bytes reserved in a page
    {21, 3, 0x402020}, // payload fractions, fixed by the format
    {44, 4, 4},        // schema format
    {52, 4, 0},        // no automatic vacuum
    {56, 4, 1},        // UTF-8
    {64, 4, 0},        // no incremental vacuum
    {72, 8, 0},        // reserved
}};

std::int64_t BigEndian(const Bytes& bytes, std::size_t at, std::size_t length) {
    std::int64_t value = 0;
    for (std::size_t i = 0; i < length; ++i)
        value = value << 8 | bytes[at + i];
    return value;
}

[[noreturn]] void NotALibrary(const Database& database) {
    throw ComponentError(ErrorNumber::NotALibrary,
                         "The file '" + database.ShownName() + "' is not a map library.");
}

/// What can be told from the first bytes, before SQLite reads more.
void CheckFirstBytes(const Database& database) {
    const std::int64_t size = database.FileSize();
    if (size == 0)
        throw ComponentError(ErrorNumber::NotALibrary,
                             "The file '" + database.ShownName() + "' is empty; it is not a map library.");
    const Bytes start = database.ReadRaw(0, static_cast<int>(std::min<std::int64_t>(size, SqliteHeaderSize)));
    const std::string_view text(reinterpret_cast<const char*>(start.data()), start.size());
    if (!text.starts_with(SqliteMagic.substr(0, std::min(start.size(), SqliteMagic.size()))))
        NotALibrary(database);
    if (size < SqliteHeaderSize)
        database.Damaged("it breaks off");
    if (BigEndian(start, 68, 4) != ApplicationId)
        NotALibrary(database);
    RequireKnownVersion(database, BigEndian(start, 60, 4));
    for (const HeaderField& field : FixedFields)
        if (BigEndian(start, field.offset, field.length) != field.value)
            database.Damaged("its first page is not that of a map library");
}

bool AsksForALog(const Database& database) {
    if (database.FileSize() < SqliteHeaderSize)
        return false;
    const Bytes start = database.ReadRaw(0, SqliteHeaderSize);
    return BigEndian(start, 18, 2) != 0x0101;
}

bool IsNext(Statement& rows, const TableText& table) {
    return rows.Step() && rows.Text(0) == "table" && rows.Text(1) == table.name &&
           rows.Text(2) == table.name && rows.Text(3) == table.sql;
}

Statement SchemaRows(Database& database) {
    return {database, "SELECT type, name, tbl_name, sql FROM sqlite_schema ORDER BY rowid"};
}

void CheckSchema(Database& database) {
    Statement rows = SchemaRows(database);
    for (const TableText& table : Tables)
        if (!IsNext(rows, table))
            database.Damaged("its tables are not those of a map library");
    if (rows.Step())
        database.Damaged("it holds a table that no map library has");
}

/// The first number of the statement, or the other one where it gives none.
std::int64_t FirstOr(std::int64_t other, Database& database, const std::string& sql) {
    Statement rows(database, sql.c_str());
    return rows.Step() ? rows.Integer(0) : other;
}

} // namespace

void CreateLibrarySchema(Database& database) {
    database.Execute(("PRAGMA page_size=" + std::to_string(PageSize) +
                      ";PRAGMA application_id=" + std::to_string(ApplicationId) +
                      ";PRAGMA user_version=" + std::to_string(FirstFormatVersion))
                         .c_str());
    for (const TableText& table : Tables)
        database.Execute(table.sql);
}

void CreateScratchSchema(Database& database) {
    // That pages can be given back has to be said before the first table.
    database.Execute(
        ("PRAGMA page_size=" + std::to_string(ScratchPageSize) + ";PRAGMA auto_vacuum=INCREMENTAL").c_str());
    database.Execute(Tables[4].sql);
    database.Execute(Tables[5].sql);
}

void RequireKnownVersion(const Database& database, std::int64_t version) {
    if (version > NewestFormatVersion)
        throw ComponentError(ErrorNumber::NewerVersion,
                             "The file '" + database.ShownName() + "' has format version " +
                                 std::to_string(version) + "; this program reads versions up to " +
                                 std::to_string(NewestFormatVersion) + ".");
    if (version < FirstFormatVersion)
        database.Damaged("its format version is impossible");
}

void CreateKeptScratchSchema(Database& database) {
    database.Execute(
        ("PRAGMA page_size=" + std::to_string(ScratchPageSize) + ";PRAGMA auto_vacuum=INCREMENTAL").c_str());
    for (const TableText& table : Tables)
        database.Execute(table.sql);
    database.Execute(UnsavedTable.sql);
}

void CheckKeptScratchSchema(Database& database) {
    Statement rows = SchemaRows(database);
    const bool isOurs =
        std::ranges::all_of(Tables, [&rows](const TableText& table) { return IsNext(rows, table); }) &&
        IsNext(rows, UnsavedTable) && !rows.Step();
    if (!isOurs)
        database.Damaged("its tables are not those of unsaved work");
}

void CheckLibraryFile(Database& database) {
    // Takes SQLite's lock, which brings back a file that was left in the middle of a save, but reads no
    // schema.
    try {
        database.Number("PRAGMA user_version");
    } catch (const ComponentError& error) {
        // Of a file with a write-ahead log SQLite says no more than that it cannot be opened so.
        if (error.Number() == ErrorNumber::FileNotReadable && AsksForALog(database))
            database.Damaged("its first page is not that of a map library");
        throw;
    }
    CheckFirstBytes(database);
    const Bytes start = database.ReadRaw(0, SqliteHeaderSize);
    if (BigEndian(start, 28, 4) * PageSize != database.FileSize())
        database.Damaged("its length is not what it says");
    CheckSchema(database);
}

UsedNumbers UsedNumbers::Of(Database& database) {
    UsedNumbers used;
    for (const TableText& table : std::span(Tables).subspan(1)) { // the library's own row counts nothing
        const std::string start = std::string("SELECT id FROM ") + table.name + " ORDER BY id";
        used.smallest = std::min(used.smallest, FirstOr(used.smallest, database, start + " LIMIT 1"));
        used.largest = std::max(used.largest, FirstOr(used.largest, database, start + " DESC LIMIT 1"));
    }
    return used;
}
