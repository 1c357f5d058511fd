#pragma once

#include "base/Progress.h"
#include "component/storage/LibraryFile.h"

#include <functional>
#include <string>
#include <vector>

/// Told of one thing that is damaged: what it is, and one sentence why.
using DamageReport = std::function<void(const std::string& object, const std::string& reason)>;

/// Work that VerifyTiles adds to the progress.
std::int64_t VerifyWork(const LibraryState& state);

/// How far a picture is looked at.
enum class Depth {
    Stored, ///< its bytes against its digest: it is what was written
    Decoded ///< its pixels against the map's record too: whoever wrote it wrote a library
};

/// Reads every directory page, tile and icon picture of the state and compares each with its digest, a map's
/// tiles on so many threads (0: one a core). Reports on the caller's thread, in the order of the tiles.
void VerifyTiles(const LibraryState& state, Depth depth, Progress& progress, const DamageReport& report,
                 int threads = 1);

/// The maps and icons of the state that lie in this container and are not whole there, as "map 'North'".
std::vector<std::string> ObjectsWithoutPixels(const LibraryState& state, const Container& container,
                                              Progress& progress);

/// Looks for what belongs to no map or icon, or to two, and lets SQLite check its own structures.
void VerifyStructure(LibraryFile& file, const LibraryState& state, const DamageReport& report);
