#pragma once

#include <array>
#include <string_view>

// Length units of projected coordinates. The combo-box and text-field helpers of the forms stand with the
// forms; what is here needs no window.

/// The units in the order of every unit list.
inline constexpr std::array<std::string_view, 4> Units{"meters", "yards", "U.S. feet", "Int. feet"};

/// A length in metres as a length in the unit, and back. Both return 0 for a text that is none of the four
/// (compared exactly); ErrorNumber::Overflow when the result is not a finite number.
double MetersToUnit(double meters, std::string_view unit);
double UnitToMeters(double value, std::string_view unit);
