#pragma once

#include "cli/input/Pairs.h"

#include <optional>
#include <string>
#include <string_view>

// Coordinates on the command line and in its input: "X,Y" as two numbers, or with letters that say which is
// which, in all the forms that pasting into the editor takes: 48°15'30"N 9°30'E, N 5316000 E 500000.

/// What a command's coordinates are: eastings and northings in a unit of length, or longitudes and latitudes
/// in degrees.
struct PlaceForm {
    bool isLength = false;
    std::string unit = "meters"; ///< one of the catalogue's; for lengths alone

    /// A pair in metres or degrees as a pair in this form, and back.
    Pair Shown(const Pair& pair) const;
    Pair Taken(const Pair& pair) const;
};

/// Throws UsageError, which lists the units, for a text that is none. Empty stands for metres.
PlaceForm LengthsIn(const std::string& unit);
inline PlaceForm Degrees() {
    return {};
}

/// Easting and northing, or longitude and latitude, of a text in which letters say which is which
/// (HasDirections). Nothing for any other text.
std::optional<Pair> ReadDirections(std::string_view text, const PlaceForm& form);

/// The same of the two halves of a pair, each a number in the form or both with letters.
std::optional<Pair> ReadPlace(std::string_view x, std::string_view y, const PlaceForm& form);

/// What is expected of such a text, for the sentence that refuses it: "a pair ... such as ...".
std::string PlaceExample(const PlaceForm& form);
