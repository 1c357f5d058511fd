#pragma once

#include "base/Progress.h"
#include "component/imaging/PyramidLayout.h"
#include "component/imaging/TileStore.h"
#include "component/scaling/Georeference.h"

#include <filesystem>
#include <string>

/// What an export says of the map beside its tiles.
struct ExportedMap {
    std::string identifier;
    std::string name;
    PyramidLayout layout;
    Georeference georeference;
};

/// Writes z/x/y.png (z = 0 the smallest level, y from the top), tiles.json, map.vrt and index.html into an
/// existing folder. Stored tiles are copied as they are. tiles.json is written first, marked incomplete, and
/// replaced last. Progress counts tiles. Throws InvalidArgument for a folder that holds another map's tiles,
/// FileNotWritable, DiskFull, FileDamaged (from the source), Cancelled.
void ExportTiles(const ExportedMap& map, TileSource& source, const std::filesystem::path& folder,
                 Progress& progress, int threads = 0);
