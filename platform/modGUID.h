#pragma once

#include "base/Guid.h" // IWYU pragma: export

// The editor's name for the making and the test of identifiers; the engine needs them, too.
