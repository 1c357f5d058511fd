#include "base/Guid.h"
#include "catalogue/modConst.h"
#include "cli/commands/CommandSet.h"
#include "cli/commands/NewObject.h"
#include "cli/commands/ScalingOptions.h"
#include "cli/commands/Selection.h"
#include "cli/input/Arguments.h"
#include "cli/output/Output.h"
#include "cli/output/ScalingRemarks.h"
#include "component/ObjectTexts.h"

#include <nlohmann/json.hpp>

namespace {

constexpr const char* ScalingUsage =
    "(--grid TEXT [--zone Z] | --datum TEXT)\n"
    "         (--worldfile W | --point PX,PY=X,Y (3 times or more) | --corner PX,PY=X,Y (4 times))\n"
    "         [--check PX,PY=X,Y ...] [--max-residual PIXELS] [--json]";

void AddScalingOptions(CLI::App& command, ScalingOptions& scaling, const std::string& worldfileHelp) {
    AddText(command, "--grid", "TEXT", scaling.system.grid,
            "Grid of the coordinates, eastings and northings in metres, as atlavex catalogue lists it: \"UTM "
            "(etrs89)\".");
    AddText(
        command, "--zone", "Z", scaling.system.zone,
        "Zone of the grid, where it has zones: a number (32, the state-plane code 4204) or its text in the "
        "catalogue (M31).");
    AddText(
        command, "--datum", "TEXT", scaling.system.datum,
        "Datum of the coordinates, longitude and latitude in degrees, as atlavex catalogue lists it: ED50.");
    AddText(command, "--worldfile", "W", scaling.worldfile, worldfileHelp);
    AddTexts(command, "--point", "PX,PY=X,Y", scaling.points,
             "A pixel (column, row from the upper left, 0,0 first) and its coordinate (easting,northing or "
             "longitude,latitude); three times: 120,80=500000,6100000. More than three are fitted by least "
             "squares, their pixels may be parts of one, and what each is off is printed.");
    AddTexts(command, "--corner", "PX,PY=X,Y", scaling.corners,
             "The same for the corners of a sheet whose meridians converge; four times: upper left, lower "
             "left, upper "
             "right, lower right.");
    AddTexts(command, "--check", "PX,PY=X,Y", scaling.checks,
             "A point that the scaling is only compared with; kept with the map. May be repeated.");
    AddText(command, "--max-residual", "PIXELS", scaling.maxResidual,
            "Refuse a scaling that puts one of more than three points, or a check, farther off; nothing is "
            "written then.");
    AddJson(command, scaling.json);
}

/// Scales the map, and says what its points are off. Throws when one is farther off than it may be.
void Scale(AtlavexMap& map, const ScalingPlan& plan, bool json, Orientation orientation) {
    plan.ApplyTo(map, orientation);
    const FitReport report = plan.ReportOf(map);
    if (json)
        PrintJson(FitAsJson(report));
    else
        Print(FitAsText(report));
    plan.RequireWithinBound(report);
}

// add-map
// ------------------------------------------------------------------------------------------------------

struct AddMapOptions {
    LibraryChoice library;
    NewObject object;
    std::string tile = "256x256";
    ScalingOptions scaling;
};

void DescribeMap(AtlavexMap& map, const NewObject& object) {
    map.SetIdentifier(CreateGUID());
    DescribeNewObject(map, object, ApplicationText());
}

ExitStatus RunAddMap(const AddMapOptions& options) {
    const PixelSize tile = ParseSize("--tile", options.tile);
    // Checked before the image is read, which may take minutes.
    const auto plan = options.scaling.Given() ? std::optional<ScalingPlan>(options.scaling) : std::nullopt;
    OpenedLibrary library = OpenForAdding(options.library);
    const auto map = library->AddMapFromImageFile(options.object.image, NameOfNewObject(options.object),
                                                  tile.width, tile.height);
    DescribeMap(*map, options.object);
    if (plan)
        Scale(*map, *plan, options.scaling.json, map->ImageTurn());
    library.Save();
    PrintRemarksOn(*map);
    return ExitStatus::Done;
}

void AddAddMap(CommandSet& commands) {
    auto options = std::make_shared<AddMapOptions>();
    CLI::App& command = commands.Add(
        {"add-map",
         std::string("FILE IMAGE [--name N] [--description T] [--tile WxH] [SCALING]\n"
                     "         [--key-file K | --key-env NAME] [--wait S]\n"
                     "SCALING: ") +
             ScalingUsage,
         "Add an image to a library as a map.",
         "Reads an image (BMP, GIF, JPEG, PNG or TIFF), cuts it into tiles with smaller overviews and adds "
         "it as the "
         "last map of the library. With the scaling options its pixels get coordinates at once; atlavex "
         "scale does "
         "that later. After any failure the library is as it was.",
         "atlavex add-map alps.Atlavex sheet.png --name \"Sheet 12\"\n"
         "atlavex add-map alps.Atlavex sheet.tif --grid \"UTM (etrs89)\" --zone 32 --worldfile sheet.tfw\n"
         "atlavex add-map alps.Atlavex old.png --datum ED50 --point 0,0=9,48 --point 0,999=9,47 \\\n"
         "        --point 999,999=10,47"});
    AddLibraryToChange(command, options->library);
    AddNewObjectOptions(command, options->object, "The image file.");
    AddText(command, "--tile", "WxH", options->tile,
            "Size of the tiles in pixels, each side 64 to 1024; 256x256 when not given.");
    AddScalingOptions(
        command, options->scaling,
        "Worldfile of the image (six numbers A, D, B, E, C, F, one a line). It counts the pixels as the "
        "image stores them; an image that is turned for display turns it as well.");
    commands.OnRun(command, options, RunAddMap);
}

// scale
// --------------------------------------------------------------------------------------------------------

struct ScaleOptions {
    LibraryChoice library;
    std::string map;
    ScalingOptions scaling;
};

ExitStatus RunScale(const ScaleOptions& options) {
    const ScalingPlan plan(options.scaling);
    OpenedLibrary library(options.library, Access::Write);
    const auto map = SelectMap(*library, options.map);
    Scale(*map, plan, options.scaling.json, Orientation::TopLeft);
    StampLastChanged(*map);
    library.Save();
    PrintRemarksOn(*map);
    return ExitStatus::Done;
}

void AddScale(CommandSet& commands) {
    auto options = std::make_shared<ScaleOptions>();
    CLI::App& command = commands.Add(
        {"scale",
         std::string("FILE MAP SCALING [--key-file K | --key-env NAME] [--wait S]\nSCALING: ") + ScalingUsage,
         "Tie a map's pixels to coordinates.",
         "Gives a map its coordinate system and ties its pixels to coordinates: through three points (any "
         "affine "
         "map: turned, sheared; more are fitted), four corners of a sheet with converging meridians, or a "
         "worldfile. An "
         "earlier scaling "
         "is replaced.",
         "atlavex scale alps.Atlavex 1 --grid \"UTM (etrs89)\" --zone 32 --worldfile sheet.tfw\n"
         "atlavex scale alps.Atlavex \"Sheet 12\" --datum WGS84 --corner 10,10=9,48 --corner 5,990=9,47 \\\n"
         "        --corner 990,10=10,48 --corner 995,990=10,47"});
    AddLibraryToChange(command, options->library);
    AddRequired(command, "MAP", options->map, "The map: position from 1, name or identifier.");
    AddScalingOptions(
        command, options->scaling,
        "Worldfile (six numbers A, D, B, E, C, F, one a line) that counts the pixels of the map as it is "
        "displayed.");
    commands.OnRun(command, options, RunScale);
}

} // namespace

void AddMapCommands(CommandSet& commands) {
    AddAddMap(commands);
    AddScale(commands);
}
