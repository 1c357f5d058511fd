#pragma once

#include "base/FileDescriptor.h"

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

// Files that are built under a temporary name beside the target whose place they take in the end, and what
// killed programs left of such files. A lock tells which are in use.

/// A name that no other file has: the start, 16 random hexadecimal digits, ".tmp".
std::string TemporaryName(const std::string& start);

/// Files of such names in the folder.
std::vector<std::filesystem::path> TemporariesIn(const std::filesystem::path& folder,
                                                 const std::string& start);

/// A new file with its lock, for its owner alone: it may hold what a key protects, and stays behind when the
/// program is killed. Not open where it cannot be made, with the reason in errno; nothing stays then.
FileDescriptor MakeLockedFile(const std::filesystem::path& file);

/// Removes a file that MakeLockedFile made once and nobody holds any more.
void RemoveIfAbandoned(const std::filesystem::path& file) noexcept;

/// The lock of a file that MakeLockedFile made once. Not open while somebody else holds it, or where there is
/// no such file of this user's.
FileDescriptor LockAbandoned(const std::filesystem::path& file) noexcept;

/// The mode that the user's settings give to new files.
mode_t UsualMode();
