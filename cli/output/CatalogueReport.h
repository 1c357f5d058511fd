#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

// What `atlavex catalogue` says.

/// {"countries": [...], "grids": [...], "datums": [...]}; docs/command.md describes the fields.
nlohmann::ordered_json CatalogueAsJson();

/// One line an entry, its parts parted by tabs.
std::string CatalogueAsText();
