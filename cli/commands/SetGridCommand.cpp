#include "cli/commands/CommandSet.h"
#include "cli/commands/CoordinateSystem.h"
#include "cli/commands/Selection.h"
#include "component/ObjectTexts.h"

namespace {

struct SetGridOptions {
    LibraryChoice library;
    std::string map;
    SystemOptions system;
};

/// Scales the map by the points of the scaling that it had; what they were fitted to stays with them.
void ScaleAsBefore(AtlavexMap& map, const Georeference& former) {
    const std::vector<ReferencePoint>& points = former.points;
    map.SetEnteredPoints(former.entered);
    map.SetCheckSets(former.checks);
    if (former.kind == ScalingKind::Polar)
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
    CheckSystemChoice(options.system, "set-grid");
    const CoordinateSystem system(options.system);
    OpenedLibrary library(options.library, Access::Write);
    const auto map = SelectMap(*library, options.map);
    const Georeference former = map->MapGeoreference();
    if (former.kind == ScalingKind::None)
        throw ComponentError(ErrorNumber::MapNotScaled,
                             "The map '" + map->Name() + "' has no points yet; atlavex scale gives it some.");
    system.ApplyTo(*map);
    ScaleAsBefore(*map, former);
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
    AddText(command, "--grid", "TEXT", options->system.grid,
            "Grid of the coordinates, eastings and northings in metres, as atlavex catalogue lists it.");
    AddText(command, "--zone", "Z", options->system.zone,
            "Zone of the grid, where it has zones: a number or its text in the catalogue.");
    AddText(command, "--datum", "TEXT", options->system.datum,
            "Datum of the coordinates, longitude and latitude in degrees, as atlavex catalogue lists it.");
    commands.OnRun(command, options, RunSetGrid);
}
