#include "cli/commands/CoordinateSystem.h"

#include "base/ComponentError.h"
#include "catalogue/GridChoice.h"
#include "catalogue/modCountryData.h"
#include "catalogue/modCountryGadgets.h"
#include "cli/input/Suggestion.h"

#include <span>
#include <vector>

namespace {

/// What any country offers of a kind.
std::vector<std::string> AllTexts(std::span<const std::string_view> CountryRow::*offered) {
    std::vector<std::string> texts;
    for (const CountryRow& country : CountryTable())
        texts.insert(texts.end(), (country.*offered).begin(), (country.*offered).end());
    return texts;
}

} // namespace

NamedGrid GridByName(const std::string& grid, const std::string& zone) {
    if (GridIdentifier(grid, 0) == 0)
        throw ComponentError(ErrorNumber::UnknownGrid, "There is no grid \"" + grid +
                                                           "\" (atlavex catalogue lists all)" +
                                                           DidYouMean(grid, AllTexts(&CountryRow::grids)));
    const GridChoice choice = ChooseGrid(grid, zone);
    return {choice.identifier, choice.zone == 0 ? "" : std::to_string(choice.zone), choice.grid};
}

QuorvantDatum DatumByName(const std::string& datum) {
    const std::int16_t identifier = DatumIdentifier(datum);
    if (identifier == 0)
        throw ComponentError(ErrorNumber::UnknownDatum, "There is no datum \"" + datum +
                                                            "\" (atlavex catalogue lists all)" +
                                                            DidYouMean(datum, AllTexts(&CountryRow::datums)));
    return MakeDatum(identifier);
}
