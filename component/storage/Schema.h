#pragma once

#include "component/storage/files/Database.h"

/// "Atlx" in ASCII: marks a file as a map library for SQLite and for tools that recognise files.
inline constexpr std::int64_t ApplicationId = 0x41746C78;

/// Makes the tables of a library in an empty database.
void CreateLibrarySchema(Database& database);
/// Makes the two tables that unsaved tiles need in an empty database.
void CreateScratchSchema(Database& database);
/// The same with those for records, so that a crash loses nothing.
void CreateKeptScratchSchema(Database& database);
/// Throws FileDamaged unless a file has these tables and nothing else.
void CheckKeptScratchSchema(Database& database);

/// Checks that the file is a library of a version that is read, whole and with our tables and nothing else,
/// before anything in it is believed. Throws NotALibrary, NewerVersion, FileDamaged, or an I/O error.
void CheckLibraryFile(Database& database);

/// Throws NewerVersion, or FileDamaged for a format version that there never was.
void RequireKnownVersion(const Database& database, std::int64_t version);

/// The smallest and the largest number that a row of a library has; 1 and 0 when there is none.
struct UsedNumbers {
    std::int64_t smallest = 1;
    std::int64_t largest = 0;

    /// Costs a few pages, whatever the size of the file.
    static UsedNumbers Of(Database& database);
};
