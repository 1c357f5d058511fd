#include "coordinates/EpsgNames.h"

#include "coordinates/StatePlaneTable.h"

#include <algorithm>

namespace {

std::optional<EpsgGrid> StatePlane(std::int32_t zone) {
    const auto zones = EpsgStatePlaneNad83();
    const auto row = std::ranges::find(zones, zone, &EpsgZone::zone);
    if (row == zones.end())
        return std::nullopt;
    return EpsgGrid{row->code, "NAD83 / " + std::string(row->name)};
}

std::optional<EpsgGrid> TypedZone(const GridFit& grid) {
    const auto row = std::ranges::find_if(EpsgTypedZones, [&grid](const EpsgZones& zones) {
        return zones.identifier == grid.identifier && grid.zone >= zones.first && grid.zone <= zones.last;
    });
    if (row == EpsgTypedZones.end())
        return std::nullopt;
    const std::string name = std::string(row->start) + std::to_string(grid.zone) + std::string(row->end);
    return EpsgGrid{row->base + grid.zone, name, row->northFirst};
}

} // namespace

std::optional<EpsgGrid> EpsgGridOf(const GridFit& grid) {
    if (grid.identifier == StatePlaneNad83Identifier)
        return StatePlane(grid.zone);
    const auto row = std::ranges::find(EpsgGrids, grid.identifier, &EpsgGridRow::identifier);
    if (row == EpsgGrids.end())
        return TypedZone(grid);
    return EpsgGrid{row->code, std::string(row->name), row->northFirst, row->base};
}

std::vector<EpsgDatum> EpsgDatumsOf(const QuorvantDatum& datum) {
    std::vector<EpsgDatum> fits;
    for (const EpsgDatum& row : EpsgDatums)
        if (row.numbers == datum.AsNumbers())
            fits.push_back(row);
    return fits;
}
