#include "coordinates/QuorvantGrid.h"

#include "base/ComponentError.h"
#include "coordinates/DatumTable.h"
#include "coordinates/GridTable.h"
#include "coordinates/StatePlaneTable.h"

#include <algorithm>
#include <span>
#include <string>

namespace {

constexpr std::int16_t UtmNad27Identifier = 32;
constexpr std::int16_t Nad27Alaska = 20;
constexpr std::int16_t Nad27Conus = 22;
constexpr std::int16_t Nad83 = 19;

/// State-plane codes begin with two digits for the state.
constexpr std::int32_t AlaskaState = 50;
constexpr std::int32_t HawaiiState = 51;
constexpr std::int32_t PuertoRicoState = 52;

/// Zones 1 to 9 lie wholly in Alaska and Canada, 59 and 60 in the Aleutians; the 48 states begin in zone 10.
std::int16_t UtmNad27Datum(std::int32_t zone) {
    return zone <= 9 || zone >= 59 ? Nad27Alaska : Nad27Conus;
}

QuorvantGrid TypedZoneGrid(const TypedZoneRow& row, std::int32_t zone) {
    if (zone < LowestTypedZone || zone > HighestTypedZone)
        throw ComponentError(ErrorNumber::UnknownZone,
                             "The zone " + std::to_string(zone) + " is not between 1 and 60.");
    const auto datum = row.identifier == UtmNad27Identifier ? UtmNad27Datum(zone) : row.datum;
    return {TransverseMercatorGrid(zone, 0, row.lonStep * zone + row.lonBase, row.k0,
                                   row.eastingStep * zone + 500000, row.falseNorthing),
            MakeDatum(datum)};
}

QuorvantDatum StatePlaneDatum(std::int16_t identifier, std::int32_t code) {
    if (identifier == StatePlaneNad83Identifier)
        return MakeDatum(Nad83);
    switch (code / 100) {
    case AlaskaState:
        return MakeDatum(Nad27Alaska);
    case HawaiiState:
        return QuorvantDatum(OldHawaiianNumbers);
    case PuertoRicoState:
        return QuorvantDatum(PuertoRico1927Numbers);
    default:
        return MakeDatum(Nad27Conus);
    }
}

QuorvantGrid StatePlaneGrid(std::int16_t identifier, std::int32_t code) {
    const auto zones = identifier == StatePlaneNad27Identifier ? StatePlaneNad27() : StatePlaneNad83();
    const auto zone = std::ranges::find(zones, code, &GridNumbers::zone);
    if (zone == zones.end())
        throw ComponentError(ErrorNumber::UnknownZone,
                             "There is no state-plane zone " + std::to_string(code) + " in this grid.");
    return {*zone, StatePlaneDatum(identifier, code)};
}

} // namespace

QuorvantGrid MakeGrid(std::int16_t identifier, std::int32_t zone) {
    if (identifier == StatePlaneNad27Identifier || identifier == StatePlaneNad83Identifier)
        return StatePlaneGrid(identifier, zone);
    const auto typed = std::ranges::find(TypedZoneTable, identifier, &TypedZoneRow::identifier);
    if (typed != TypedZoneTable.end())
        return TypedZoneGrid(*typed, zone);
    const auto row = std::ranges::find(GridTable, identifier, &GridRow::identifier);
    if (row == GridTable.end())
        throw ComponentError(ErrorNumber::UnknownGrid,
                             "There is no grid with the identifier " + std::to_string(identifier) + ".");
    return {row->numbers, QuorvantDatum(row->datum)};
}
