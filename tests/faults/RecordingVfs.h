#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// One change to a file, in the order in which SQLite made them.
struct DiskEvent {
    enum class Kind { Write, Truncate, Sync, Delete };
    Kind kind = Kind::Write;
    std::string file;
    std::int64_t offset = 0; ///< of a write; the new length of a truncation
    std::string bytes = {};
};

/// Stands between SQLite and the operating system in this process from the first call on, and notes what
/// SQLite does to files while it is told to.
namespace RecordingVfs {

void Install();
void Start();
std::vector<DiskEvent> Stop();

} // namespace RecordingVfs
