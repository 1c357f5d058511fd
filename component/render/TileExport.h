#pragma once

#include "base/Progress.h"
#include "component/Georeference.h"
#include "component/PyramidLayout.h"
#include "component/tiles/TileStore.h"

#include <filesystem>
#include <string>

/// What an export says of the map beside its tiles.
struct ExportedMap {
    std::string identifier;
    std::string name;
    PyramidLayout layout;
    Georeference georeference;
};

/// Writes z/x/y.png (z = 0 the smallest level, y from the top), tiles.json, map.vrt (with a column.vrt in
/// each folder z/x and a level.vrt in each folder z but the largest) and index.html into an existing folder.
/// Stored tiles are copied as they are. tiles.json is written first, marked incomplete, and replaced last;
/// after a cancelled or failed export it says incomplete. The same map's former files are overwritten one by
/// one. Progress counts tiles. At most four threads write; 0: one a core. Throws InvalidArgument for a folder
/// that holds another map's tiles, FileNotWritable (no such folder, too), DiskFull, FileNotReadable,
/// FileDamaged (from the source), Cancelled.
void ExportTiles(const ExportedMap& map, TileSource& source, const std::filesystem::path& folder,
                 Progress& progress, int threads = 0);
