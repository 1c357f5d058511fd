#pragma once

#include "component/AtlavexLibrary.h"

/// What is worth knowing about the library's last save beside its success, in sentences; mostly nothing.
std::vector<std::string> NotesOfLastSave(const AtlavexLibrary& library);
