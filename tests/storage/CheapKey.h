#pragma once

#include "component/storage/Sealing.h"

/// What a key costs in tests: the least that a file may ask for.
inline constexpr KeyCost Cheap{1, 8192};
