#pragma once

#include <string>

struct sqlite3_file;

/// Why a rollback journal must not be rolled into the database file beside it, as the end of a sentence about
/// the journal; empty when it is that file's own, or when SQLite passes over it. Both files must be open.
///
/// A journal is found by its name alone, so one that lies beside a file need not have been written for it: it
/// may have come along with a file from elsewhere, or an older copy may have been put in the file's place.
std::string ReasonAgainstJournal(sqlite3_file& journal, sqlite3_file& database);
