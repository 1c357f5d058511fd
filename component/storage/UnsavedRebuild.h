#pragma once

#include "component/storage/UnsavedRecords.h"

/// A library as it was in a program that was killed.
struct RebuiltWork {
    std::shared_ptr<const Envelope> envelope; ///< nothing: the key is wrong, and nothing was read
    LibraryState state;                       ///< its maps and icons lie in the scratches or in the file
    std::unique_ptr<LibraryFile> file;        ///< that it belongs to; nothing where there is none any more
    std::int64_t nextNumber = 1;
    std::vector<std::string> notes;   ///< what is worth knowing, in sentences
    std::vector<std::string> missing; ///< what could not be had again
};

/// Reads a scratch that was left, those that belong to it, and the file: `base`, or when that is empty the
/// one that the scratch names. A file that is gone or another library is told; what stands in the scratches
/// is rebuilt all the same. Of a file that was saved since, what is new in it stays. Throws FileLocked,
/// FileDamaged.
RebuiltWork RebuildUnsavedWork(const std::filesystem::path& scratch, const std::string& key,
                               const std::string& base);
