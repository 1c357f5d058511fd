#pragma once

#include "coordinates/Projection.h"

#include <optional>
#include <string_view>

// Whole coordinates as other programs, web pages and sheets write them, in UTF-8. Numbers may have a decimal
// point, or a decimal comma where `decimalSign` is one.
//
// Only what is surely a whole coordinate is taken for one, for a number that is cut in two puts a map
// elsewhere: a text with letters or with two degree signs, a text whose halves are parted by a semicolon, by
// a comma and a blank, or by a comma where both have a decimal point, and one of two numbers parted by a
// blank that both have decimals or are both lengths ("617 300" is one number in groups).

/// Where a text was written. In a box for degrees, minutes or seconds alone a blank may part the parts of one
/// angle: there it parts no pair.
enum class WrittenAs { WholeNumber, PartOfAngle };

/// A latitude and a longitude in one text: decimal degrees, degrees and minutes, or degrees, minutes and
/// seconds, with or without signs for the units. Latitude comes first unless letters (N, S, E, W; before or
/// after each angle) say otherwise: "55°40'34\"N 12°34'08\"E", "E 12.569 N 55.676", "55.676, -12.569".
/// Nothing for any other text, and for angles beyond ±90 and ±360 degrees.
std::optional<LonLat> ParseLonLat(std::string_view text, char decimalSign,
                                  WrittenAs place = WrittenAs::WholeNumber);

/// An easting and a northing in one text, easting first unless letters (E, N) say otherwise: "32633 6173000",
/// "N 6173000.5 E 32633".
std::optional<EastNorth> ParseEastNorth(std::string_view text, char decimalSign);

/// Whether a text says by letters which of its halves is which: it holds one of N, S, E and W, large or
/// small, that is no exponent of a number.
bool HasDirections(std::string_view text);
