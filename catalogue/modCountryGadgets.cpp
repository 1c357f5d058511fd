#include "catalogue/modCountryGadgets.h"

#include "base/CheckedNumbers.h"
#include "catalogue/modCountryData.h"
#include "catalogue/modSPCS.h"

#include <algorithm>
#include <array>

namespace {

/// How a grid comes by its zone.
enum class ZoneKind { None, List, Typed, StatePlane };

struct GridEntry {
    std::string_view text;
    std::int16_t identifier; ///< of the first zone, for a zone list
    ZoneKind zoneKind;
};

// Identifiers 5, 8 and 46 are not given to any grid.
constexpr std::array<GridEntry, 30> GridEntries{{
    {"UTM North (wgs84)", 1, ZoneKind::Typed},
    {"UTM South (wgs84)", 2, ZoneKind::Typed},
    {"British National Grid", 3, ZoneKind::None},
    {"Irish National Grid", 4, ZoneKind::None},
    {"Swedish Grid (rt90)", 6, ZoneKind::None},
    {"Swiss Grid (ch1903)", 7, ZoneKind::None},
    {"Finnish Grid", 9, ZoneKind::List},
    {"UTM (etrs89)", 13, ZoneKind::Typed},
    {"Luxembourg Grid (luref)", 14, ZoneKind::None},
    {"Australian Map Grid (amg84)", 15, ZoneKind::Typed},
    {"Map Grid of Australia (mga94)", 16, ZoneKind::Typed},
    {"Bundesmeldenetz", 17, ZoneKind::List},
    {"NZ Transverse Mercator (2000)", 20, ZoneKind::None},
    {"NZ Map Grid (1972)", 21, ZoneKind::None},
    {"Belgium Grid", 22, ZoneKind::None},
    {"French Grid (ntf)", 23, ZoneKind::List},
    {"French Grid (rgf93)", 27, ZoneKind::None},
    {"UTM (ed50)", 28, ZoneKind::Typed},
    {"German Grid (Potsdam)", 29, ZoneKind::Typed},
    {"State Plane (nad27)", 30, ZoneKind::StatePlane},
    {"State Plane (nad83)", 31, ZoneKind::StatePlane},
    {"UTM (nad27)", 32, ZoneKind::Typed},
    {"UTM (nad83)", 33, ZoneKind::Typed},
    {"Dutch Grid (Amersfoort)", 34, ZoneKind::None},
    {"Gauss Boaga (roma40)", 35, ZoneKind::List},
    {"Norwegian Grid (ngo48)", 37, ZoneKind::List},
    {"France Lambert 2 Etendu", 45, ZoneKind::None},
    {"UTM (ed50 Denmark)", 47, ZoneKind::Typed},
    {"System 34 (Main land)", 48, ZoneKind::None},
    {"System 45 (Bornholm)", 49, ZoneKind::None},
}};

/// The datum of identifier 1, 2, 3, …
constexpr std::array<std::string_view, 27> DatumTexts{"WGS84",
                                                      "ETRS89",
                                                      "OSGB36",
                                                      "CH1903",
                                                      "RT90",
                                                      "Ireland 65",
                                                      "Finland Hayford",
                                                      "LUREF",
                                                      "WGS72",
                                                      "AGD84",
                                                      "GDA94",
                                                      "MGI (Hermannskugel)",
                                                      "NZGD49",
                                                      "NZGD2000",
                                                      "NTF",
                                                      "BD72",
                                                      "ED50",
                                                      "Potsdam",
                                                      "NAD83",
                                                      "NAD27 (Alaska)",
                                                      "NAD27 (East)",
                                                      "NAD27 (Conus)",
                                                      "NAD27 (West)",
                                                      "Amersfoort",
                                                      "ROMA40",
                                                      "NGO48",
                                                      "ED50 Denmark"};

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
    if (grid == "State Plane (nad27)")
        return CodesWithNames(SpcsNad27Code, SpcsNad27Name);
    if (grid == "State Plane (nad83)")
        return CodesWithNames(SpcsNad83Code, SpcsNad83Name);
    const auto table = ZoneListTable();
    const auto row = std::ranges::find(table, grid, &ZoneListRow::grid);
    if (row == table.end())
        return {};
    return {row->zones.begin(), row->zones.end()};
}

bool GridHasNumericZone(std::string_view grid) {
    const GridEntry* entry = FindGrid(grid);
    return entry != nullptr && entry->zoneKind == ZoneKind::Typed;
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
