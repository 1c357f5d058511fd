#include "cli/CoordinateSystem.h"

#include "base/ComponentError.h"
#include "catalogue/GridChoice.h"
#include "catalogue/modCountryGadgets.h"

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
