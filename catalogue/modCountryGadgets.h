#pragma once

#include "coordinates/CatalogueTexts.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Look-ups in the catalogue by display text. Every comparison is exact and case-sensitive, without trimming;
// a text that is not in the catalogue gives the neutral answer (nothing, false, 0).

/// The grids, resp. datums, that the country offers, in list order; nothing for "<Custom>".
std::span<const std::string_view> GridsOf(std::string_view country);
std::span<const std::string_view> DatumsOf(std::string_view country);

/// The zones to pick from: "0101 Alabama East" … for the state-plane grids, the fixed list of a list-zone
/// grid, nothing for any other grid.
std::vector<std::string> ZonesOf(std::string_view grid);

/// How the grid comes by its zone; None for a text that is no grid.
ZoneKind ZoneKindOf(std::string_view grid);

/// True for the ten grids whose zone is typed as a number from 1 to 60.
bool GridHasNumericZone(std::string_view grid);

/// The identifier that the coordinate component understands. `zone` is the 0-based place in the grid's zone
/// list and is read for the five list-zone grids only, without regard to the list's length; an identifier
/// beyond 16 bits is ErrorNumber::Overflow. For typed and state-plane zones the zone is handed on separately.
std::int16_t GridIdentifier(std::string_view grid, std::int16_t zone);

std::int16_t DatumIdentifier(std::string_view datum);
