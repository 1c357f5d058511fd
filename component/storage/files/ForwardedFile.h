#pragma once

#include <sqlite3.h>

#include <new>

/// What stands between SQLite and a file: SQLite allocates it together with the real one, which follows it,
/// and every call goes on to that. Whoever wants to see or to change some of the calls takes the methods,
/// replaces those, and derives what he needs to know of a file.
struct ForwardedFile {
    sqlite3_file base{};
    sqlite3_file* real = nullptr;

    static ForwardedFile& Of(sqlite3_file* file) { return *reinterpret_cast<ForwardedFile*>(file); }
};

/// Methods that do nothing but hand on. Version 1: no shared memory, hence no log, and no mapping of the
/// file.
sqlite3_io_methods ForwardingMethods();

/// Makes such a file in the place that SQLite has allocated.
template <typename File>
File& MakeForwarded(sqlite3_file* place) {
    File& own = *new (place) File{};
    own.real = reinterpret_cast<sqlite3_file*>(&own + 1);
    return own;
}
