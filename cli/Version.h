#pragma once

#include <string>

/// "atlavex 2.31.0".
std::string ProgramVersionText();

/// "Quorvant Studio v2.31.0", the "version" that a new map carries.
std::string MapVersionText();
