#pragma once

#include <filesystem>

/// Gives a new file, open for writing, owner, group, mode, access list and further attributes of another one,
/// as far as this user may and the file system can; those of any new file when there is no other. Where the
/// group cannot be kept, the new file's own group gets no right that all others have not.
void CopyRights(int descriptor, const std::filesystem::path& other);

/// Whether a new file in the other one's place can have its owner and its group.
bool CanKeepOwnerAndGroup(const std::filesystem::path& other);
