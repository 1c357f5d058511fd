#pragma once

#include "coordinates/QuorvantGrid.h"

#include <cstdint>
#include <string>

/// A grid of the catalogue with its zone.
struct GridChoice {
    std::int16_t identifier;
    /// The typed zone or the state-plane code; the 1-based place in a zone list; 0 for a grid without zones.
    std::int32_t zone;
    QuorvantGrid grid;

    /// The zone as maps made by the command carry it: a decimal number, empty for a grid without zones.
    std::string ZoneText() const { return zone == 0 ? "" : std::to_string(zone); }
};

/// The code at the head of a state-plane zone's text: 101 of "0101 Alabama East". Throws UnknownZone for a
/// text without one.
std::int32_t StatePlaneCode(const std::string& zoneText);

/// The grid of a text of the catalogue and a zone as it is written on a command line:
/// - a grid with a typed zone: a whole number from 1 to 60;
/// - a state-plane grid: the zone's code ("0101", "101"), its name, or "code name";
/// - a grid with a zone list: the zone's text ("M31", "Zone 3 (Whole country)") or its 1-based place;
/// - any other grid: an empty text.
///
/// Throws UnknownGrid, or UnknownZone with a sentence that says what is expected.
GridChoice ChooseGrid(const std::string& gridText, const std::string& zoneText);
