#pragma once

#include <string>
#include <string_view>

/// The viewer page (viewer_page.html) with the map's name as its title and the text of tiles.json inside.
std::string ViewerPage(std::string_view name, std::string_view tilesJson);
