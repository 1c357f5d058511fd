#pragma once

#include <array>
#include <span>
#include <string_view>

// The countries and regions, and the grids, datums and zones that each offers, by their display texts. All
// lists are constants in the order in which they are shown.

/// The order of the country list. "<Custom>" has no lists of its own.
inline constexpr std::array<std::string_view, 19> Countries{
    "<Custom>",    "International",   "United States", "Australia",     "Austria",    "Belgium", "Denmark",
    "Finland",     "France",          "Germany",       "Great Britain", "Ireland",    "Italy",   "Luxembourg",
    "New Zealand", "The Netherlands", "Norway",        "Sweden",        "Switzerland"};

/// Choices of hemisphere; a position's letters are the first letters.
inline constexpr std::array<std::string_view, 2> EastWest{"East", "West"};
inline constexpr std::array<std::string_view, 2> NorthSouth{"North", "South"};

/// What a country offers.
struct CountryRow {
    std::string_view country;
    std::span<const std::string_view> grids;
    std::span<const std::string_view> datums;
};

/// The countries that have lists: all of Countries but "<Custom>", in the same order.
std::span<const CountryRow> CountryTable();

/// A grid whose zone is picked from a fixed list; the 0-based place in the list is the zone.
struct ZoneListRow {
    std::string_view grid;
    std::span<const std::string_view> zones;
};

/// The five such grids (the state-plane zones stand in modSPCS).
std::span<const ZoneListRow> ZoneListTable();
