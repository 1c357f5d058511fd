#include "cli/output/CatalogueReport.h"

#include "catalogue/modCountryData.h"
#include "catalogue/modCountryGadgets.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string_view>
#include <vector>

using Json = nlohmann::ordered_json;

namespace {

using Names = std::vector<std::string_view>;

void AddOnce(Names& names, std::span<const std::string_view> more) {
    for (const std::string_view name : more)
        if (std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
}

/// The grids of all countries, each once, by identifier.
Names AllGrids() {
    Names names;
    for (const CountryRow& row : CountryTable())
        AddOnce(names, row.grids);
    std::sort(names.begin(), names.end(), [](std::string_view left, std::string_view right) {
        return GridIdentifier(left, 0) < GridIdentifier(right, 0);
    });
    return names;
}

Names AllDatums() {
    Names names;
    for (const CountryRow& row : CountryTable())
        AddOnce(names, row.datums);
    std::sort(names.begin(), names.end(), [](std::string_view left, std::string_view right) {
        return DatumIdentifier(left) < DatumIdentifier(right);
    });
    return names;
}

const char* ZoneKindText(std::string_view grid) {
    switch (ZoneKindOf(grid)) {
    case ZoneKind::Typed:
        return "number";
    case ZoneKind::List:
    case ZoneKind::StatePlane:
        return "list";
    case ZoneKind::None:
        break;
    }
    return "none";
}

/// Each zone of a zone list has an identifier of its own; those of the state plane share their grid's.
std::int16_t ZoneIdentifier(std::string_view grid, std::size_t place) {
    return GridIdentifier(grid, static_cast<std::int16_t>(place));
}

Json ZonesAsJson(std::string_view grid) {
    Json zones = Json::array();
    const std::vector<std::string> names = ZonesOf(grid);
    for (std::size_t place = 0; place < names.size(); ++place)
        zones.push_back({{"name", names[place]}, {"identifier", ZoneIdentifier(grid, place)}});
    return zones;
}

Json GridsAsJson() {
    Json grids = Json::array();
    for (const std::string_view grid : AllGrids())
        grids.push_back({{"name", grid},
                         {"identifier", GridIdentifier(grid, 0)},
                         {"zone", ZoneKindText(grid)},
                         {"zones", ZonesAsJson(grid)}});
    return grids;
}

Json DatumsAsJson() {
    Json datums = Json::array();
    for (const std::string_view datum : AllDatums())
        datums.push_back({{"name", datum}, {"identifier", DatumIdentifier(datum)}});
    return datums;
}

Json CountriesAsJson() {
    Json countries = Json::array();
    for (const CountryRow& row : CountryTable())
        countries.push_back({{"name", row.country},
                             {"grids", Names(row.grids.begin(), row.grids.end())},
                             {"datums", Names(row.datums.begin(), row.datums.end())}});
    return countries;
}

std::string Line(std::string_view kind, std::string_view name, const std::string& rest) {
    return std::string(kind) + "\t" + std::string(name) + "\t" + rest + "\n";
}

std::string GridsAsText() {
    std::string text;
    for (const std::string_view grid : AllGrids()) {
        const std::string zone = GridHasNumericZone(grid) ? "\tzone 1 to 60" : "";
        text += Line("grid", grid, std::to_string(GridIdentifier(grid, 0)) + zone);
        const std::vector<std::string> zones = ZonesOf(grid);
        for (std::size_t place = 0; place < zones.size(); ++place)
            text += Line("zone", grid, std::to_string(ZoneIdentifier(grid, place)) + "\t" + zones[place]);
    }
    return text;
}

std::string CountriesAsText() {
    std::string text;
    for (const CountryRow& row : CountryTable()) {
        for (const std::string_view grid : row.grids)
            text += Line("country", row.country, "grid\t" + std::string(grid));
        for (const std::string_view datum : row.datums)
            text += Line("country", row.country, "datum\t" + std::string(datum));
    }
    return text;
}

} // namespace

Json CatalogueAsJson() {
    return {{"countries", CountriesAsJson()}, {"grids", GridsAsJson()}, {"datums", DatumsAsJson()}};
}

std::string CatalogueAsText() {
    std::string text = GridsAsText();
    for (const std::string_view datum : AllDatums())
        text += Line("datum", datum, std::to_string(DatumIdentifier(datum)));
    return text + CountriesAsText();
}
