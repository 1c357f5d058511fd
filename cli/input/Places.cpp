#include "cli/input/Places.h"

#include "base/NumberText.h"
#include "catalogue/modGadgets.h"
#include "coordinates/CoordinateText.h"

#include <algorithm>

namespace {

constexpr char DecimalPoint = '.';

} // namespace

Pair PlaceForm::Shown(const Pair& pair) const {
    return isLength ? Pair{MetersToUnit(pair.x, unit), MetersToUnit(pair.y, unit)} : pair;
}

Pair PlaceForm::Taken(const Pair& pair) const {
    return isLength ? Pair{UnitToMeters(pair.x, unit), UnitToMeters(pair.y, unit)} : pair;
}

PlaceForm LengthsIn(const std::string& unit) {
    if (unit.empty())
        return {true};
    if (std::ranges::find(Units, unit) == Units.end()) {
        std::string known;
        for (const std::string_view each : Units)
            known += (known.empty() ? "'" : ", '") + std::string(each) + "'";
        throw UsageError("--unit: '" + unit + "' is none of " + known + ".");
    }
    return {true, unit};
}

std::optional<Pair> ReadDirections(std::string_view text, const PlaceForm& form) {
    if (form.isLength) {
        const auto position = ParseEastNorth(text, DecimalPoint);
        return position ? std::optional(Pair{position->easting, position->northing}) : std::nullopt;
    }
    const auto position = ParseLonLat(text, DecimalPoint);
    return position ? std::optional(Pair{position->longitude, position->latitude}) : std::nullopt;
}

std::optional<Pair> ReadPlace(std::string_view x, std::string_view y, const PlaceForm& form) {
    if (HasDirections(x) || HasDirections(y))
        return ReadDirections(std::string(x) + " " + std::string(y), form);
    const auto first = TextToNumber(x), second = TextToNumber(y);
    if (!first || !second)
        return std::nullopt;
    return Pair{*first, *second};
}

std::string PlaceExample(const PlaceForm& form) {
    return form.isLength
               ? "an easting and a northing such as 500000 5316000 or N 5316000 E 500000"
               : "a longitude and a latitude such as 9.5 48.25 or 48\u00B015'N 9\u00B030'E (in degrees, "
                 "minutes and seconds letters say which is which)";
}
