#include "base/Guid.h"
#include "catalogue/modConst.h"
#include "cli/commands/CommandSet.h"
#include "cli/commands/NewObject.h"
#include "cli/commands/ScalingOptions.h"
#include "cli/commands/Selection.h"
#include "cli/input/Arguments.h"
#include "cli/output/Interrupt.h"
#include "cli/output/Output.h"
#include "cli/output/ScalingRemarks.h"
#include "component/ObjectTexts.h"

#include <nlohmann/json.hpp>

namespace {

constexpr const char* ScalingUsage =
    "(--grid TEXT [--zone Z] [--unit U] | --datum TEXT)\n"
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
    AddText(
        command, "--unit", "U", scaling.unit,
        "Unit of eastings and northings: meters (when not given), yards, \"U.S. feet\" or \"Int. feet\".");
    AddText(command, "--worldfile", "W", scaling.worldfile, worldfileHelp);
    AddTexts(command, "--point", "PX,PY=X,Y", scaling.points,
             "A pixel (column, row from the upper left, 0,0 first) and its coordinate (easting,northing or "
             "longitude,latitude); three times: 120,80=500000,6100000. With letters it may be in degrees, "
             "minutes and seconds or have its northing first: \"120,80=48\u00B015'30\\\"N 9\u00B030'E\". "
             "More than "
             "three are fitted by least squares, their pixels may be parts of one, and what each is off is "
             "printed.");
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

constexpr const char* BesideImage = "auto";

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
    std::vector<std::string> images;
    NewObject object; ///< of one image; of several what they share
    std::string tile = "256x256";
    ScalingOptions scaling;
};

void DescribeMap(AtlavexMap& map, const NewObject& object) {
    map.SetIdentifier(CreateGUID());
    DescribeNewObject(map, object, ApplicationText());
}

/// The scaling of one image; it is checked before the image is read, which may take minutes.
std::optional<ScalingPlan> PlanFor(const std::string& image, ScalingOptions scaling) {
    if (!scaling.Given())
        return std::nullopt;
    if (scaling.worldfile == BesideImage)
        scaling.worldfile = FindWorldfile(image).string();
    return ScalingPlan(scaling);
}

/// Adds one image and saves; after a failure the library is not to be used any more.
void AddImage(OpenedLibrary& library, const AddMapOptions& options, const std::string& image,
              const std::optional<ScalingPlan>& plan) {
    NewObject object = options.object;
    object.image = image;
    const PixelSize tile = ParseSize("--tile", options.tile);
    const auto map =
        library->AddMapFromImageFile(object.image, NameOfNewObject(object), tile.width, tile.height);
    DescribeMap(*map, object);
    if (plan)
        Scale(*map, *plan, options.scaling.json, map->ImageTurn());
    library.Save();
    PrintRemarksOn(*map);
}

ExitStatus AddOneImage(const AddMapOptions& options) {
    const std::string& image = options.images.front();
    const auto plan = PlanFor(image, options.scaling);
    OpenedLibrary library = OpenForAdding(options.library);
    AddImage(library, options, image, plan);
    return ExitStatus::Done;
}

void RequireOptionsOfSeveral(const AddMapOptions& options) {
    const ScalingOptions& scaling = options.scaling;
    if (options.object.name || scaling.json || !scaling.points.empty() || !scaling.corners.empty() ||
        !scaling.checks.empty() || !scaling.maxResidual.empty())
        throw UsageError(
            "--name, --point, --corner, --check, --max-residual and --json are for one image alone.");
    if (!scaling.worldfile.empty() && scaling.worldfile != BesideImage)
        throw UsageError("Several images need --worldfile auto: each has a worldfile of its own.");
    if (scaling.Given() && scaling.worldfile.empty())
        throw UsageError("A scaling of several images needs --worldfile auto.");
    if (scaling.Given())
        const CoordinateSystem known(scaling.system); // else each image would fail in the same way
}

/// Whether the image was added; says why not. What ends the whole command is thrown.
bool TryToAdd(OpenedLibrary& library, const AddMapOptions& options, const std::string& image) {
    try {
        AddImage(library, options, image, PlanFor(image, options.scaling));
        return true;
    } catch (const ComponentError& error) {
        if (IsInterrupted())
            throw;
        PrintMessage("'" + image + "' was not added: " + error.Description());
        return false;
    }
}

/// Each image is a transaction of its own: what was added before a failure stays, what comes after it is
/// added.
ExitStatus AddSeveralImages(const AddMapOptions& options) {
    RequireOptionsOfSeveral(options);
    OpenedLibrary library = OpenForAdding(options.library);
    std::size_t added = 0;
    for (const std::string& image : options.images) {
        ThrowIfInterrupted();
        if (&image != &options.images.front())
            library.LoadAgain();
        added += TryToAdd(library, options, image) ? 1 : 0;
    }
    if (added == options.images.size())
        return ExitStatus::Done;
    throw CommandFailure(ExitStatus::Failed, std::to_string(added) + " of " +
                                                 std::to_string(options.images.size()) +
                                                 " images were added.");
}

ExitStatus RunAddMap(const AddMapOptions& options) {
    ParseSize("--tile", options.tile); // before anything is opened
    return options.images.size() == 1 ? AddOneImage(options) : AddSeveralImages(options);
}

void AddAddMap(CommandSet& commands) {
    auto options = std::make_shared<AddMapOptions>();
    CLI::App& command = commands.Add(
        {"add-map",
         std::string("FILE IMAGE... [--name N] [--description T] [--tile WxH] [SCALING]\n"
                     "         [--key-file K | --key-env NAME] [--wait S]\n"
                     "SCALING: ") +
             ScalingUsage,
         "Add images to a library as maps.",
         "Reads an image (BMP, GIF, JPEG, PNG or TIFF), cuts it into tiles with smaller overviews and adds "
         "it as the last map of the library. With the scaling options its pixels get coordinates at once; "
         "atlavex scale does that later. After any failure the library is as it was. Several images are "
         "added "
         "and saved one after the other: one that fails is named and left out, and the status is 1 then; a "
         "scaling of several takes their worldfiles (--worldfile auto).",
         "atlavex add-map alps.Atlavex sheet.png --name \"Sheet 12\"\n"
         "atlavex add-map alps.Atlavex sheet.tif --grid \"UTM (etrs89)\" --zone 32 --worldfile sheet.tfw\n"
         "atlavex add-map alps.Atlavex scans/*.tif --grid \"UTM (etrs89)\" --zone 32 --worldfile auto\n"
         "atlavex add-map alps.Atlavex old.png --datum ED50 --point 0,0=9,48 --point 0,999=9,47 \\\n"
         "        --point 999,999=10,47"});
    AddLibraryToChange(command, options->library);
    AddTexts(command, "IMAGE", "", options->images, "The image files.");
    AddDescriptionOptions(command, options->object);
    AddText(command, "--tile", "WxH", options->tile,
            "Size of the tiles in pixels, each side 64 to 1024; 256x256 when not given.");
    AddScalingOptions(
        command, options->scaling,
        "Worldfile of the image (six numbers A, D, B, E, C, F, one a line). It counts the pixels as the "
        "image stores them; an image that is turned for display turns it as well. \"auto\" takes the one "
        "that "
        "lies beside the image under a usual name: for sheet.tif sheet.tfw, sheet.tifw, sheet.tif.wld or "
        "sheet.wld.");
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
    if (options.scaling.worldfile == BesideImage)
        throw UsageError("--worldfile auto looks beside an image, and scale has none; name the file "
                         "(./auto if that is its name).");
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
