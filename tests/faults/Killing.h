#pragma once

#include "tests/support/RunProgram.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

/// One call of the operating system: its name, and how many of this name its thread made up to it, itself
/// included.
struct SystemCall {
    std::string name;
    int occurrence = 0;
    std::string text = {}; ///< as the trace shows it, paths of descriptors included
};

/// Calls that a save makes to get data and names to the disk.
inline constexpr const char* SavingCalls =
    "pwrite64,fsync,fdatasync,rename,link,unlink,ftruncate,openat,close,fchmod";

/// Runs the command and lists its calls of these names in their order.
std::vector<SystemCall> TraceCalls(const std::vector<std::string>& command, const std::string& names);

/// Runs the command while strace tampers with its calls: "pwrite64" and "error=ENOSPC:when=3" (in each
/// thread).
ProgramResult RunTampered(const std::vector<std::string>& command, const std::string& callName,
                          const std::string& tampering);

/// Runs the command without looking at its output and kills it after the time unless it has ended. Gives the
/// time that it lived.
std::chrono::microseconds RunAndKill(const std::vector<std::string>& command,
                                     std::chrono::microseconds after);

/// Runs the command and kills it when one of its threads is about to make the call; false when none made it.
bool RunAndKillAt(const std::vector<std::string>& command, const SystemCall& call);
