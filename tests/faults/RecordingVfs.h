#pragma once

#include <cstdint>
#include <functional>
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

/// Stands between SQLite and the operating system in this process from the first call on, notes what SQLite
/// does to files while it is told to, and tells when it lets one go.
namespace RecordingVfs {

void Install();
void Start();
std::vector<DiskEvent> Stop();

/// Called whenever a file has been unlocked, with its name, until another function or none is set.
void OnUnlock(std::function<void(const std::string& file)> call);

} // namespace RecordingVfs
