#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// The absolute place of a file without symbolic links in it, so that a save replaces the file and not a link
/// to it; for a link to nothing, the place where the file would be that it promises. Where links lead round
/// in a circle, or their folders cannot be read, the path as it stands, made absolute: using it will say why.
std::filesystem::path RealPath(const std::filesystem::path& file);

/// The folder that a file lies in: "." where its path names none.
std::filesystem::path FolderOf(const std::filesystem::path& file);

/// Names of what lies in the folder; none when it cannot be listed. (The standard library's way to list a
/// folder ends the program when memory runs out.)
std::vector<std::string> NamesIn(const std::filesystem::path& folder);

/// Whether the name is taken, by a link that leads nowhere, too; also where that cannot be told.
bool IsSomethingAt(const std::filesystem::path& path);

/// Whether the file stands in another place, too (a hard link).
bool HasSecondName(const std::filesystem::path& file);

/// Throws unless the path names a regular file (FileNotFound, FileNotReadable): a folder, device or pipe is
/// never opened.
void RequireRegularFile(const std::filesystem::path& file);
