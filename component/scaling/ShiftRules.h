#pragma once

#include "component/Georeference.h"

#include <algorithm>

// What holds of a shift to WGS84 that nobody knows, in a file as in a map that is being scaled.

/// False where it is unknown and yet named.
inline bool IsConsistent(const SystemIdentity& system) {
    return !system.shiftUnknown ||
           (system.shiftCode.empty() && system.shiftName.empty() && system.shiftAccuracy == 0);
}

/// Whether the datum has no shift at all: then it may be one that is unknown.
inline bool IsEllipsoidAlone(const std::optional<QuorvantDatum>& datum) {
    return datum && std::ranges::all_of(datum->AsNumbers().begin() + 2, datum->AsNumbers().end(),
                                        [](double number) { return number == 0; });
}
