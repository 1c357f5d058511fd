#pragma once

#include "base/Progress.h"
#include "component/render/ExportFolder.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// A tile on its way into its file.
struct TileFile {
    std::string name;    ///< z/x/y.png
    std::int32_t column; ///< tiles of one column lie in one folder
    std::vector<std::uint8_t> bytes;
};

/// Calls `read` with a function that takes the tiles, and writes these on `threads` threads, the caller's
/// among them. Two threads never write into the same folder for long: the system lets one in at a time. At
/// most a few megabytes of tiles wait. Progress counts the files written. Throws what `read` or the writing
/// throws, and Cancelled; no thread outlives the call.
void WriteTiles(const ExportFolder& folder, Progress& progress, int threads,
                const std::function<void(const std::function<void(TileFile)>& put)>& read);
