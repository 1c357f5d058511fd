#pragma once

// Start-up calls these in this order. Units, countries, grids, datums and zones are constants, so that there
// is nothing to fill and a second call does no harm; the order stands here once, for whoever starts the
// program.

inline void FillUnits() {}
inline void FillCountries() {}
inline void FillGridsAndDatums() {}
/// Part of FillZones.
inline void FillStatePlaneZones() {}
inline void FillZones() {
    FillStatePlaneZones();
}
