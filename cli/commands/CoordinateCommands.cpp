#include "cli/commands/CommandSet.h"
#include "cli/commands/CoordinateSystem.h"
#include "cli/commands/Selection.h"
#include "cli/input/Arguments.h"
#include "cli/input/Pairs.h"
#include "coordinates/Projection.h"

namespace {

constexpr const char* StreamText =
    "Without the two numbers, pairs are read from the standard input, one a line, the "
    "numbers parted by blanks, tabs or \";\"; empty lines and lines that begin with \"#\" "
    "are skipped.";

constexpr PairNames PixelNames{"pixelX", "pixelY"};
constexpr PairNames WorldNames{"x", "y"};
constexpr PairNames Wgs84Names{"longitude", "latitude"};

// locate and find
// ----------------------------------------------------------------------------------------------

struct PositionOptions {
    LibraryChoice library;
    std::string map;
    std::string x;
    std::string y;
    bool wgs84 = false;
    bool json = false;
};

PairConversion LocateWith(const AtlavexMap& map, bool wgs84) {
    return [&map, wgs84](const Pair& pixel) {
        const WorldPosition world = map.PixelToWorld({pixel.x, pixel.y});
        if (!wgs84)
            return Pair{world.x, world.y};
        const LonLat position = map.WorldToWgs84(world);
        return Pair{position.longitude, position.latitude};
    };
}

PairConversion FindWith(const AtlavexMap& map, bool wgs84) {
    return [&map, wgs84](const Pair& place) {
        const WorldPosition world =
            wgs84 ? map.Wgs84ToWorld({place.x, place.y}) : WorldPosition{place.x, place.y};
        const PixelPosition pixel = map.WorldToPixel(world);
        return Pair{pixel.x, pixel.y};
    };
}

std::shared_ptr<AtlavexMap> SelectScaledMap(AtlavexLibrary& library, const std::string& text) {
    auto map = SelectMap(library, text);
    if (!map->IsScaled())
        throw ComponentError(ErrorNumber::MapNotScaled, "The map '" + map->Name() + "' is not scaled.");
    return map;
}

/// `convert` makes the conversion of the map, once the arguments are known to be right.
ExitStatus RunPosition(const PositionOptions& options,
                       PairConversion (*makeConversion)(const AtlavexMap&, bool), const PairNames& from,
                       const PairNames& to) {
    const bool given = PairGiven(options.x, options.y);
    const Pair pair =
        given ? Pair{ParseNumber("The first number", options.x), ParseNumber("The second number", options.y)}
              : Pair{};
    const OpenedLibrary library(options.library, Access::Read);
    const auto map = SelectScaledMap(*library, options.map);
    const PairTask task{makeConversion(*map, options.wgs84), from, to, options.json};
    return given ? ConvertPair(task, pair) : ConvertPairsOfInput(task);
}

ExitStatus RunLocate(const PositionOptions& options) {
    return RunPosition(options, LocateWith, PixelNames, options.wgs84 ? Wgs84Names : WorldNames);
}

ExitStatus RunFind(const PositionOptions& options) {
    return RunPosition(options, FindWith, options.wgs84 ? Wgs84Names : WorldNames, PixelNames);
}

void AddPosition(CLI::App& command, PositionOptions& options, const PairNames& names,
                 const std::string& numbersHelp, const std::string& wgs84Help) {
    AddLibrary(command, options.library);
    AddRequired(command, "MAP", options.map, "The map: position from 1, name or identifier.");
    AddText(command, names.x, "", options.x, numbersHelp);
    AddText(command, names.y, "", options.y, "The second number of the pair.");
    AddFlag(command, "--wgs84", options.wgs84, wgs84Help);
    AddJson(command, options.json);
}

void AddLocate(CommandSet& commands) {
    auto options = std::make_shared<PositionOptions>();
    CLI::App& command = commands.Add(
        {"locate", "FILE MAP [PX PY] [--wgs84] [--json] [--key-file K | --key-env NAME]",
         "Turn pixels of a map into coordinates.",
         std::string(
             "Prints the coordinate of a pixel: easting and northing in metres for a map with a grid, else "
             "longitude and latitude in degrees, east and north positive. ") +
             StreamText,
         "atlavex locate alps.Atlavex 1 250 400\n"
         "printf '0 0\\n250 400\\n' | atlavex locate alps.Atlavex \"Sheet 12\" --wgs84"});
    AddPosition(
        command, *options, {"PX", "PY"},
        "Column and row of the pixel, counted from the upper left; 0 0 is the centre of the first pixel.",
        "Print longitude and latitude in WGS84 degrees.");
    commands.OnRun(command, options, RunLocate);
}

void AddFind(CommandSet& commands) {
    auto options = std::make_shared<PositionOptions>();
    CLI::App& command = commands.Add(
        {"find", "FILE MAP [X Y] [--wgs84] [--json] [--key-file K | --key-env NAME]",
         "Turn coordinates into pixels of a map.",
         std::string(
             "Prints the pixel, column and row, that has a coordinate; it may lie outside the map. ") +
             StreamText,
         "atlavex find alps.Atlavex 1 500250 6099800\natlavex find alps.Atlavex 1 9.25 47.5 --wgs84"});
    AddPosition(
        command, *options, {"X", "Y"},
        "Easting and northing in metres for a map with a grid, else longitude and latitude in degrees.",
        "X and Y are longitude and latitude in WGS84 degrees.");
    commands.OnRun(command, options, RunFind);
}

// project
// ------------------------------------------------------------------------------------------------------

struct ProjectOptions {
    std::string grid;
    std::string zone;
    bool inverse = false;
    bool json = false;
};

constexpr PairNames GridNames{"easting", "northing"};

ExitStatus RunProject(const ProjectOptions& options) {
    const GridChoice named = GridByName(options.grid, options.zone);
    const GridProjection projection(named.grid.AsNumbers(), named.grid.Datum());
    const PairConversion forward = [&projection](const Pair& pair) {
        const EastNorth position = projection.Forward({pair.x, pair.y});
        return Pair{position.easting, position.northing};
    };
    const PairConversion inverse = [&projection](const Pair& pair) {
        const LonLat position = projection.Inverse({pair.x, pair.y});
        return Pair{position.longitude, position.latitude};
    };
    if (options.inverse)
        return ConvertPairsOfInput({inverse, GridNames, Wgs84Names, options.json});
    return ConvertPairsOfInput({forward, Wgs84Names, GridNames, options.json});
}

void AddProject(CommandSet& commands) {
    auto options = std::make_shared<ProjectOptions>();
    CLI::App& command =
        commands.Add({"project", "--grid TEXT [--zone Z] [--inverse] [--json]",
                      "Convert longitude and latitude to a grid.",
                      "Reads pairs from the standard input, one a line: longitude and latitude in degrees on "
                      "the grid's own datum; "
                      "prints easting and northing in metres. With --inverse the other way round.",
                      "echo 9 48 | atlavex project --grid \"UTM (etrs89)\" --zone 32\n"
                      "echo 500000 5316000 | atlavex project --grid \"UTM (etrs89)\" --zone 32 --inverse"});
    AddRequired(command, "--grid", options->grid,
                "The grid, as atlavex catalogue lists it: \"UTM (etrs89)\".", "TEXT");
    AddText(command, "--zone", "Z", options->zone,
            "Its zone, where it has zones: a number (32, the state-plane code 4204) or its text (M31).");
    AddFlag(command, "--inverse", options->inverse, "From easting and northing to longitude and latitude.");
    AddJson(command, options->json);
    commands.OnRun(command, options, RunProject);
}

// shift
// --------------------------------------------------------------------------------------------------------

struct ShiftOptions {
    std::string datum;
    bool inverse = false;
    bool json = false;
};

constexpr PairNames DatumNames{"datumLongitude", "datumLatitude"};

ExitStatus RunShift(const ShiftOptions& options) {
    const DatumShift shift(DatumByName(options.datum));
    const PairConversion forward = [&shift](const Pair& pair) {
        const LonLat position = shift.ToWgs84({pair.x, pair.y});
        return Pair{position.longitude, position.latitude};
    };
    const PairConversion inverse = [&shift](const Pair& pair) {
        const LonLat position = shift.FromWgs84({pair.x, pair.y});
        return Pair{position.longitude, position.latitude};
    };
    if (options.inverse)
        return ConvertPairsOfInput({inverse, Wgs84Names, DatumNames, options.json});
    return ConvertPairsOfInput({forward, DatumNames, Wgs84Names, options.json});
}

void AddShift(CommandSet& commands) {
    auto options = std::make_shared<ShiftOptions>();
    CLI::App& command = commands.Add(
        {"shift", "--datum TEXT [--inverse] [--json]", "Convert positions between a datum and WGS84.",
         "Reads pairs from the standard input, one a line: longitude and latitude in degrees on the datum; "
         "prints "
         "longitude and latitude in WGS84. With --inverse the other way round.",
         "echo 9 48 | atlavex shift --datum ED50\necho 9 48 | atlavex shift --datum ED50 --inverse"});
    AddRequired(command, "--datum", options->datum, "The datum, as atlavex catalogue lists it: ED50.",
                "TEXT");
    AddFlag(command, "--inverse", options->inverse, "From WGS84 to the datum.");
    AddJson(command, options->json);
    commands.OnRun(command, options, RunShift);
}

} // namespace

void AddCoordinateCommands(CommandSet& commands) {
    AddLocate(commands);
    AddFind(commands);
    AddProject(commands);
    AddShift(commands);
}
