#pragma once

#include <filesystem>
#include <memory>

/// SQLite's write lock on a file that is about to be replaced, whatever the file holds: nothing is read,
/// rolled back or written. As long as it is held no program that goes through SQLite writes to the file.
class WriteLock {
public:
    /// Waits a moment for another program; FileLocked when that goes on writing. Where there is no file, or
    /// one that this user may not write, or a file system without locks, nothing is held.
    explicit WriteLock(const std::filesystem::path& file);
    ~WriteLock();
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;

private:
    class Held;
    std::unique_ptr<Held> held_;
};
