#pragma once

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

/// One call of the operating system: its name, and how many of this name came up to it, itself included.
struct SystemCall {
    std::string name;
    int occurrence = 0;
};

/// Calls that a save makes to get data and names to the disk.
inline constexpr const char* SavingCalls =
    "pwrite64,fsync,fdatasync,rename,link,unlink,ftruncate,openat,close,fchmod";

/// Runs the command and lists its calls of these names in their order.
std::vector<SystemCall> TraceCalls(const std::vector<std::string>& command, const std::string& names);

/// Runs the command without looking at its output and kills it after the time unless it has ended. Gives the
/// time that it lived.
std::chrono::microseconds RunAndKill(const std::vector<std::string>& command,
                                     std::chrono::microseconds after);

/// Runs the command and kills it when it is about to make the call.
void RunAndKillAt(const std::vector<std::string>& command, const SystemCall& call);
