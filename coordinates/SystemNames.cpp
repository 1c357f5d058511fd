#include "coordinates/SystemNames.h"

#include "coordinates/CatalogueTexts.h"
#include "coordinates/DatumTable.h"
#include "coordinates/GridTable.h"
#include "coordinates/StatePlaneTable.h"

#include <algorithm>

namespace {

const GridEntry* FindEntry(std::int32_t identifier) {
    const auto entry = std::ranges::find_if(GridEntries, [identifier](const GridEntry& candidate) {
        return identifier >= candidate.identifier &&
               identifier < candidate.identifier + candidate.identifiers;
    });
    return entry == GridEntries.end() ? nullptr : &*entry;
}

/// Grids whose datum has the numbers of others, with the datum that is meant.
struct OwnDatum {
    std::int16_t grid;
    std::int16_t datum;
};
constexpr std::array<OwnDatum, 6> OwnDatums{{
    {13, 2},  // UTM (etrs89)
    {16, 11}, // Map Grid of Australia (mga94)
    {20, 14}, // NZ Transverse Mercator (2000)
    {27, 2},  // French Grid (rgf93)
    {31, 19}, // State Plane (nad83)
    {33, 19}, // UTM (nad83)
}};

bool SameProjection(const GridNumbers& a, const GridNumbers& b) {
    const bool danish = a.method == static_cast<std::int32_t>(ProjectionMethod::DanishSystem34);
    return a.method == b.method && a.values == b.values && (!danish || a.zone == b.zone);
}

/// Collects the grids of the catalogue that are the same as one.
class GridSearch {
public:
    GridSearch(const GridNumbers& grid, const QuorvantDatum& datum) : grid_(grid), datum_(datum) {}

    void Try(std::int16_t identifier, std::int32_t zone) {
        const QuorvantGrid candidate = MakeGrid(identifier, zone);
        if (SameProjection(candidate.AsNumbers(), grid_) && candidate.Datum() == datum_)
            fits.push_back({identifier, GridZone(candidate.AsNumbers())});
    }

    std::vector<GridFit> fits;

private:
    const GridNumbers& grid_;
    const QuorvantDatum& datum_;
};

std::string NameOf(const GridFit& fit, bool withZone) {
    std::string name(GridText(fit.identifier));
    if (withZone && fit.zone != 0)
        name += " zone " + std::to_string(fit.zone);
    return name;
}

std::vector<std::int16_t> DatumsOf(const QuorvantDatum& datum, const std::vector<GridFit>& grids) {
    std::vector<std::int16_t> fits = FittingDatums(datum);
    if (fits.size() < 2 || grids.size() != 1)
        return fits;
    const auto own = std::ranges::find(OwnDatums, grids.front().identifier, &OwnDatum::grid);
    if (own != OwnDatums.end() && std::ranges::find(fits, own->datum) != fits.end())
        return {own->datum};
    return fits;
}

} // namespace

std::string_view GridText(std::int32_t identifier) {
    const GridEntry* entry = FindEntry(identifier);
    return entry == nullptr ? std::string_view() : entry->text;
}

std::string_view DatumText(std::int32_t identifier) {
    if (identifier < 1 || static_cast<std::size_t>(identifier) > DatumTexts.size())
        return {};
    return DatumTexts.at(static_cast<std::size_t>(identifier) - 1);
}

std::int32_t GridZone(const GridNumbers& grid) {
    // There it says which polynomials apply.
    return grid.method == static_cast<std::int32_t>(ProjectionMethod::DanishSystem34) ? 0 : grid.zone;
}

std::string ZoneText(const GridNumbers& grid, const std::string& zone) {
    const std::int32_t number = GridZone(grid);
    return number != 0 ? std::to_string(number) : zone == "0" ? std::string() : zone;
}

std::vector<GridFit> FittingGrids(const GridNumbers& grid, const QuorvantDatum& datum) {
    GridSearch search(grid, datum);
    for (const TypedZoneRow& row : TypedZoneTable)
        for (std::int32_t zone = LowestTypedZone; zone <= HighestTypedZone; ++zone)
            search.Try(row.identifier, zone);
    for (const GridRow& row : GridTable)
        search.Try(row.identifier, 0);
    for (const GridNumbers& zone : StatePlaneNad27())
        search.Try(StatePlaneNad27Identifier, zone.zone);
    for (const GridNumbers& zone : StatePlaneNad83())
        search.Try(StatePlaneNad83Identifier, zone.zone);
    return search.fits;
}

std::vector<std::int16_t> FittingDatums(const QuorvantDatum& datum) {
    std::vector<std::int16_t> fits;
    for (const DatumRow& row : DatumTable)
        if (row.numbers == datum.AsNumbers())
            fits.push_back(row.identifier);
    return fits;
}

std::vector<std::string> SystemNames::GridNames() const {
    std::vector<std::string> names;
    for (const GridFit& fit : grids)
        names.push_back(NameOf(fit, grids.size() > 1));
    return names;
}

std::string SystemNames::GridName() const {
    return JoinNames(GridNames());
}

std::vector<std::string> SystemNames::DatumNames() const {
    std::vector<std::string> names;
    for (const std::int16_t identifier : datums)
        names.emplace_back(DatumText(identifier));
    return names;
}

std::string SystemNames::DatumName() const {
    return JoinNames(DatumNames());
}

SystemNames NamesOf(const std::optional<QuorvantDatum>& datum, const std::optional<GridNumbers>& grid,
                    std::int32_t gridIdentifier) {
    SystemNames names;
    const QuorvantDatum known = datum.value_or(QuorvantDatum());
    if (grid && FindEntry(gridIdentifier) != nullptr)
        names.grids = {{static_cast<std::int16_t>(gridIdentifier), GridZone(*grid)}};
    else if (grid)
        names.grids = FittingGrids(*grid, known);
    if (datum)
        names.datums = DatumsOf(known, names.grids);
    return names;
}

std::string JoinNames(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool last = i + 1 == names.size();
        text += (i == 0 ? "" : last ? " or " : ", ") + names[i];
    }
    return text;
}
