#include "cli/commands/CommandSet.h"
#include "cli/commands/CoordinateSystem.h"
#include "cli/commands/Selection.h"
#include "component/ObjectTexts.h"

namespace {

struct SetGridOptions {
    LibraryChoice library;
    std::string map;
    std::string grid;
    std::string zone;
    std::string datum;
};

void CheckSystemChoice(const SetGridOptions& options) {
    if (options.grid.empty() == options.datum.empty())
        throw UsageError("set-grid needs either --grid or --datum.");
    if (!options.zone.empty() && options.grid.empty())
        throw UsageError("--zone belongs to --grid.");
}

/// What the numbers of a map's reference points are to mean from now on; known before the library is opened.
class CoordinateSystem {
public:
    explicit CoordinateSystem(const SetGridOptions& options)
        : grid_(options.grid.empty() ? std::nullopt : std::optional(GridByName(options.grid, options.zone))),
          datum_(grid_ ? grid_->grid.Datum() : DatumByName(options.datum)) {}

    void ApplyTo(AtlavexMap& map) const {
        map.SetMapDatum(datum_.AsNumbers());
        if (!grid_)
            return;
        const GridNumbers numbers = grid_->grid.AsNumbers();
        map.SetMapGrid(numbers.method, numbers.zone, numbers.values);
        map.SetGridIdentifier(grid_->identifier);
        map.SetZone(grid_->zone);
    }

private:
    std::optional<NamedGrid> grid_;
    QuorvantDatum datum_;
};

/// Scales the map by the points of the scaling that it had.
void ScaleAsBefore(AtlavexMap& map, ScalingKind kind, const std::vector<ReferencePoint>& points) {
    if (kind == ScalingKind::Polar)
        map.SetScalingCorners(points.at(0), points.at(1), points.at(2), points.at(3));
    else
        map.SetScalingThreePoints(points.at(0), points.at(1), points.at(2));
}

/// Throws OutsideArea where the system is not defined at a point: eastings are no longitudes.
void RequireDefinedAt(const AtlavexMap& map, const std::vector<ReferencePoint>& points) {
    for (const ReferencePoint& point : points)
        static_cast<void>(map.WorldToWgs84({point.x, point.y}));
}

ExitStatus RunSetGrid(const SetGridOptions& options) {
    CheckSystemChoice(options);
    const CoordinateSystem system(options);
    OpenedLibrary library(options.library, Access::Write);
    const auto map = SelectMap(*library, options.map);
    const Georeference former = map->MapGeoreference();
    if (former.kind == ScalingKind::None)
        throw ComponentError(ErrorNumber::MapNotScaled,
                             "The map '" + map->Name() + "' has no points yet; atlavex scale gives it some.");
    system.ApplyTo(*map);
    ScaleAsBefore(*map, former.kind, former.points);
    RequireDefinedAt(*map, former.points);
    StampLastChanged(*map);
    library.Save();
    return ExitStatus::Done;
}

} // namespace

void AddSetGridCommand(CommandSet& commands) {
    auto options = std::make_shared<SetGridOptions>();
    CLI::App& command =
        commands.Add({"set-grid",
                      "FILE MAP (--grid TEXT [--zone Z] | --datum TEXT)\n         [--key-file K | --key-env "
                      "NAME] [--wait S]",
                      "Name another grid, zone or datum for a scaled map.",
                      "Says in which grid, zone or datum the coordinates of a scaled map are, and keeps its "
                      "reference points with "
                      "their numbers as they were entered: for a map that was scaled with the right numbers "
                      "in the wrong zone. A "
                      "system that is not defined at one of the points is refused.",
                      "atlavex set-grid alps.Atlavex 1 --grid \"Bundesmeldenetz\" --zone M31\n"
                      "atlavex set-grid alps.Atlavex \"Sheet 12\" --datum ED50"});
    AddLibraryToChange(command, options->library);
    AddRequired(command, "MAP", options->map, "The map: position from 1, name or identifier.");
    AddText(command, "--grid", "TEXT", options->grid,
            "Grid of the coordinates, eastings and northings in metres, as atlavex catalogue lists it.");
    AddText(command, "--zone", "Z", options->zone,
            "Zone of the grid, where it has zones: a number or its text in the catalogue.");
    AddText(command, "--datum", "TEXT", options->datum,
            "Datum of the coordinates, longitude and latitude in degrees, as atlavex catalogue lists it.");
    commands.OnRun(command, options, RunSetGrid);
}
