#include "cli/commands/CommandSet.h"
#include "cli/commands/CoordinateSystem.h"
#include "cli/commands/Selection.h"
#include "cli/input/Arguments.h"
#include "cli/input/Places.h"
#include "coordinates/CoordinateText.h"
#include "coordinates/Projection.h"

namespace {

constexpr const char* StreamText =
    "Without the two numbers, pairs are read from the standard input, one a line, the "
    "numbers parted by blanks, tabs or \";\"; empty lines and lines that begin with \"#\" "
    "are skipped.";

constexpr PairNames PixelNames{"pixelX", "pixelY"};
constexpr PairNames WorldNames{"x", "y"};
constexpr PairNames Wgs84Names{"longitude", "latitude"};

void AddUnit(CLI::App& command, std::string& unit) {
    AddText(
        command, "--unit", "U", unit,
        "Unit of eastings and northings, taken and printed: meters (when not given), yards, \"U.S. feet\" or "
        "\"Int. feet\".");
}

/// Lines of input, each a place in this form.
PairReading LinesIn(const PlaceForm& form) {
    return [form](std::string_view line) {
        if (HasDirections(line))
            return ReadDirections(line, form);
        const auto words = TwoWords(line);
        return words ? ReadPlace(words->first, words->second, form) : std::nullopt;
    };
}

// locate and find
// ----------------------------------------------------------------------------------------------

struct PositionOptions {
    LibraryChoice library;
    std::string map;
    std::string x;
    std::string y;
    std::string unit;
    bool wgs84 = false;
    bool json = false;
};

PairConversion LocateWith(const AtlavexMap& map, bool wgs84, const PlaceForm& form) {
    return [&map, wgs84, form](const Pair& pixel) {
        const WorldPosition world = map.PixelToWorld({pixel.x, pixel.y});
        if (!wgs84)
            return form.Shown({world.x, world.y});
        const LonLat position = map.WorldToWgs84(world);
        return Pair{position.longitude, position.latitude};
    };
}

PairConversion FindWith(const AtlavexMap& map, bool wgs84, const PlaceForm& form) {
    return [&map, wgs84, form](const Pair& place) {
        const Pair taken = form.Taken(place);
        const WorldPosition world =
            wgs84 ? map.Wgs84ToWorld({taken.x, taken.y}) : WorldPosition{taken.x, taken.y};
        const PixelPosition pixel = map.WorldToPixel(world);
        return Pair{pixel.x, pixel.y};
    };
}

[[noreturn]] void RefuseUnit() {
    throw UsageError("--unit is for eastings and northings; these are degrees.");
}

/// What the coordinates of a map are, or WGS84's. Throws UsageError for a unit of length of degrees.
PlaceForm FormOf(const AtlavexMap& map, const PositionOptions& options) {
    if (!options.wgs84 && map.HasGrid())
        return LengthsIn(options.unit);
    if (!options.unit.empty())
        RefuseUnit();
    return Degrees();
}

std::shared_ptr<AtlavexMap> SelectScaledMap(AtlavexLibrary& library, const std::string& text) {
    auto map = SelectMap(library, text);
    if (!map->IsScaled())
        throw ComponentError(ErrorNumber::MapNotScaled, "The map '" + map->Name() + "' is not scaled.");
    return map;
}

Pair PairOfNumbers(const PositionOptions& options) {
    return {ParseNumber("The first number", options.x), ParseNumber("The second number", options.y)};
}

/// What can be said of a unit before the library is opened.
void CheckUnit(const PositionOptions& options) {
    LengthsIn(options.unit);
    if (options.wgs84 && !options.unit.empty())
        RefuseUnit();
}

ExitStatus RunLocate(const PositionOptions& options) {
    CheckUnit(options);
    const bool given = PairGiven(options.x, options.y);
    const Pair pixel = given ? PairOfNumbers(options) : Pair{};
    const OpenedLibrary library(options.library, Access::Read);
    const auto map = SelectScaledMap(*library, options.map);
    const PairTask task{{},
                        LocateWith(*map, options.wgs84, FormOf(*map, options)),
                        PixelNames,
                        options.wgs84 ? Wgs84Names : WorldNames,
                        options.json};
    return given ? ConvertPair(task, pixel) : ConvertPairsOfInput(task);
}

/// The coordinate of the command line, in the map's form.
Pair PlaceGiven(const PositionOptions& options, const PlaceForm& form) {
    const auto place = ReadPlace(options.x, options.y, form);
    if (!place)
        throw UsageError("'" + options.x + " " + options.y + "' is not " + PlaceExample(form) + ".");
    return *place;
}

ExitStatus RunFind(const PositionOptions& options) {
    CheckUnit(options);
    const bool given = PairGiven(options.x, options.y);
    // Letters mean one thing on a grid and another in degrees; numbers are numbers before the file is opened.
    if (given && !HasDirections(options.x + " " + options.y))
        PairOfNumbers(options);
    const OpenedLibrary library(options.library, Access::Read);
    const auto map = SelectScaledMap(*library, options.map);
    const PlaceForm form = FormOf(*map, options);
    const PairTask task{LinesIn(form), FindWith(*map, options.wgs84, form),
                        options.wgs84 ? Wgs84Names : WorldNames, PixelNames, options.json};
    return given ? ConvertPair(task, PlaceGiven(options, form)) : ConvertPairsOfInput(task);
}

void AddPosition(CLI::App& command, PositionOptions& options, const PairNames& names,
                 const std::string& numbersHelp, const std::string& wgs84Help) {
    AddLibrary(command, options.library);
    AddRequired(command, "MAP", options.map, "The map: position from 1, name or identifier.");
    AddText(command, names.x, "", options.x, numbersHelp);
    AddText(command, names.y, "", options.y, "The second number of the pair.");
    AddFlag(command, "--wgs84", options.wgs84, wgs84Help);
    AddUnit(command, options.unit);
    AddJson(command, options.json);
}

void AddLocate(CommandSet& commands) {
    auto options = std::make_shared<PositionOptions>();
    CLI::App& command = commands.Add(
        {"locate", "FILE MAP [PX PY] [--wgs84 | --unit U] [--json] [--key-file K | --key-env NAME]",
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
        {"find", "FILE MAP [X Y] [--wgs84 | --unit U] [--json] [--key-file K | --key-env NAME]",
         "Turn coordinates into pixels of a map.",
         std::string(
             "Prints the pixel, column and row, that has a coordinate; it may lie outside the map. With "
             "letters a coordinate may be in degrees, minutes and seconds or have its northing first: "
             "48\u00B015'30\"N 9\u00B030'E. ") +
             StreamText,
         "atlavex find alps.Atlavex 1 500250 6099800\natlavex find alps.Atlavex 1 9.25 47.5 --wgs84\n"
         "echo \"47 30 0 N 9 15 0 E\" | atlavex find alps.Atlavex 1 --wgs84"});
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
    std::string unit;
    bool inverse = false;
    bool json = false;
};

constexpr PairNames GridNames{"easting", "northing"};

ExitStatus RunProject(const ProjectOptions& options) {
    const PlaceForm lengths = LengthsIn(options.unit);
    const GridChoice named = GridByName(options.grid, options.zone);
    const GridProjection projection(named.grid.AsNumbers(), named.grid.Datum());
    const PairConversion forward = [&](const Pair& pair) {
        const EastNorth position = projection.Forward({pair.x, pair.y});
        return lengths.Shown({position.easting, position.northing});
    };
    const PairConversion inverse = [&](const Pair& pair) {
        const Pair meters = lengths.Taken(pair);
        const LonLat position = projection.Inverse({meters.x, meters.y});
        return Pair{position.longitude, position.latitude};
    };
    if (options.inverse)
        return ConvertPairsOfInput({LinesIn(lengths), inverse, GridNames, Wgs84Names, options.json});
    return ConvertPairsOfInput({LinesIn(Degrees()), forward, Wgs84Names, GridNames, options.json});
}

void AddProject(CommandSet& commands) {
    auto options = std::make_shared<ProjectOptions>();
    CLI::App& command =
        commands.Add({"project", "--grid TEXT [--zone Z] [--unit U] [--inverse] [--json]",
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
    AddUnit(command, options->unit);
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
        return ConvertPairsOfInput({LinesIn(Degrees()), inverse, Wgs84Names, DatumNames, options.json});
    return ConvertPairsOfInput({LinesIn(Degrees()), forward, DatumNames, Wgs84Names, options.json});
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
