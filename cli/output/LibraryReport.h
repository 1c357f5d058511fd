#pragma once

#include "component/AtlavexLibrary.h"

#include <nlohmann/json_fwd.hpp>

#include <string>

// What `atlavex info` says of a library.

/// {"file", "sealed", "maps": [...], "icons": [...]}; docs/command.md describes the fields.
nlohmann::ordered_json LibraryAsJson(AtlavexLibrary& library);

/// The same as lines for a reader.
std::string LibraryAsText(AtlavexLibrary& library);
