#include "cli/commands/CoordinateSystem.h"

#include "base/ComponentError.h"
#include "catalogue/modCountryData.h"
#include "catalogue/modCountryGadgets.h"
#include "cli/input/Suggestion.h"
#include "cli/output/ExitStatus.h"

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

GridChoice GridByName(const std::string& grid, const std::string& zone) {
    if (GridIdentifier(grid, 0) == 0)
        throw ComponentError(ErrorNumber::UnknownGrid, "There is no grid \"" + grid +
                                                           "\" (atlavex catalogue lists all)" +
                                                           DidYouMean(grid, AllTexts(&CountryRow::grids)));
    return ChooseGrid(grid, zone);
}

QuorvantDatum DatumByName(const std::string& datum) {
    const std::int16_t identifier = DatumIdentifier(datum);
    if (identifier == 0)
        throw ComponentError(ErrorNumber::UnknownDatum, "There is no datum \"" + datum +
                                                            "\" (atlavex catalogue lists all)" +
                                                            DidYouMean(datum, AllTexts(&CountryRow::datums)));
    return MakeDatum(identifier);
}

void CheckSystemChoice(const SystemOptions& options, const std::string& needer) {
    if (options.grid.empty() == options.datum.empty())
        throw UsageError(needer + " needs either --grid or --datum.");
    if (!options.zone.empty() && options.grid.empty())
        throw UsageError("--zone belongs to --grid.");
}

CoordinateSystem::CoordinateSystem(const SystemOptions& options)
    : grid_(options.grid.empty() ? std::nullopt : std::optional(GridByName(options.grid, options.zone))),
      datum_(grid_ ? grid_->grid.Datum() : DatumByName(options.datum)) {}

void CoordinateSystem::ApplyTo(AtlavexMap& map) const {
    map.SetMapDatum(datum_.AsNumbers());
    if (!grid_)
        return;
    const GridNumbers numbers = grid_->grid.AsNumbers();
    map.SetMapGrid(numbers.method, numbers.zone, numbers.values);
    map.SetGridIdentifier(grid_->identifier);
    map.SetZone(grid_->ZoneText());
}
