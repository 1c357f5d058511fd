#pragma once

#include "component/render/TileExport.h"

#include <optional>
#include <string>
#include <string_view>

/// Version of the layout of an exported folder, written into tiles.json; it grows when a reader has to know
/// of a change.
inline constexpr int TileFolderVersion = 1;

/// The JSON text of tiles.json, UTF-8. Keys in a fixed order, numbers with as many digits as read back the
/// same.
std::string DescribeMap(const ExportedMap& map, bool complete);

/// The identifier in the text of a tiles.json; nothing where the text is none.
std::optional<std::string> IdentifierIn(std::string_view tilesJson);
