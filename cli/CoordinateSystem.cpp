#include "cli/CoordinateSystem.h"

#include "base/ComponentError.h"
#include "catalogue/GridChoice.h"
#include "catalogue/modCountryData.h"
#include "catalogue/modCountryGadgets.h"

#include <algorithm>

namespace {

/// True when the identifier is the grid's, for one of its listed zones where the zone is part of it.
bool IsGrid(std::string_view grid, std::int32_t identifier) {
    const auto lists = ZoneListTable();
    const auto list =
        std::find_if(lists.begin(), lists.end(), [grid](const ZoneListRow& row) { return row.grid == grid; });
    const std::int32_t zones = list == lists.end() ? 1 : static_cast<std::int32_t>(list->zones.size());
    const std::int32_t first = GridIdentifier(grid, 0);
    return identifier >= first && identifier < first + zones;
}

} // namespace

NamedGrid GridByName(const std::string& grid, const std::string& zone) {
    const GridChoice choice = ChooseGrid(grid, zone);
    return {choice.identifier, choice.zone == 0 ? "" : std::to_string(choice.zone), choice.grid};
}

QuorvantDatum DatumByName(const std::string& datum) {
    const std::int16_t identifier = DatumIdentifier(datum);
    if (identifier == 0)
        throw ComponentError(ErrorNumber::UnknownDatum,
                             "There is no datum \"" + datum + "\"; all are listed by: atlavex catalogue.");
    return MakeDatum(identifier);
}

std::string GridName(std::int32_t identifier) {
    for (const CountryRow& country : CountryTable())
        for (const std::string_view grid : country.grids)
            if (IsGrid(grid, identifier))
                return std::string(grid);
    return {};
}

std::string DatumName(std::int32_t identifier) {
    for (const CountryRow& country : CountryTable())
        for (const std::string_view datum : country.datums)
            if (DatumIdentifier(datum) == identifier)
                return std::string(datum);
    return {};
}
