#include "catalogue/modCountryGadgets.h"

#include "base/CheckedNumbers.h"
#include "catalogue/modCountryData.h"
#include "catalogue/modSPCS.h"
#include "coordinates/StatePlaneTable.h"

#include <algorithm>

namespace {

/// Null for a text that is no grid.
const GridEntry* FindGrid(std::string_view grid) {
    const auto entry = std::ranges::find(GridEntries, grid, &GridEntry::text);
    return entry == GridEntries.end() ? nullptr : &*entry;
}

const CountryRow* FindCountry(std::string_view country) {
    const auto table = CountryTable();
    const auto row = std::ranges::find(table, country, &CountryRow::country);
    return row == table.end() ? nullptr : &*row;
}

template <std::size_t N>
std::vector<std::string> CodesWithNames(const std::array<std::string_view, N>& codes,
                                        const std::array<std::string_view, N>& names) {
    std::vector<std::string> items;
    for (std::size_t i = 0; i < N; ++i)
        items.push_back(std::string(codes[i]) + " " + std::string(names[i]));
    return items;
}

} // namespace

std::span<const std::string_view> GridsOf(std::string_view country) {
    const CountryRow* row = FindCountry(country);
    return row == nullptr ? std::span<const std::string_view>() : row->grids;
}

std::span<const std::string_view> DatumsOf(std::string_view country) {
    const CountryRow* row = FindCountry(country);
    return row == nullptr ? std::span<const std::string_view>() : row->datums;
}

std::vector<std::string> ZonesOf(std::string_view grid) {
    const GridEntry* entry = FindGrid(grid);
    if (entry == nullptr)
        return {};
    if (entry->zoneKind == ZoneKind::StatePlane)
        return entry->identifier == StatePlaneNad27Identifier ? CodesWithNames(SpcsNad27Code, SpcsNad27Name)
                                                              : CodesWithNames(SpcsNad83Code, SpcsNad83Name);
    const auto table = ZoneListTable();
    const auto row = std::ranges::find(table, grid, &ZoneListRow::grid);
    if (row == table.end())
        return {};
    return {row->zones.begin(), row->zones.end()};
}

ZoneKind ZoneKindOf(std::string_view grid) {
    const GridEntry* entry = FindGrid(grid);
    return entry == nullptr ? ZoneKind::None : entry->zoneKind;
}

bool GridHasNumericZone(std::string_view grid) {
    return ZoneKindOf(grid) == ZoneKind::Typed;
}

std::int16_t GridIdentifier(std::string_view grid, std::int16_t zone) {
    const GridEntry* entry = FindGrid(grid);
    if (entry == nullptr)
        return 0;
    return entry->zoneKind == ZoneKind::List ? CheckedAdd(entry->identifier, zone) : entry->identifier;
}

std::int16_t DatumIdentifier(std::string_view datum) {
    const auto text = std::ranges::find(DatumTexts, datum);
    return text == DatumTexts.end() ? std::int16_t{0}
                                    : static_cast<std::int16_t>(text - DatumTexts.begin() + 1);
}
