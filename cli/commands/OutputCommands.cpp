#include "cli/commands/CommandSet.h"
#include "cli/commands/Selection.h"
#include "cli/input/Arguments.h"
#include "cli/output/Interrupt.h"
#include "component/ImageWriter.h"

#include <cerrno>
#include <filesystem>

namespace {

/// A picture must not take the place of the library that it comes from.
void CheckOutput(const std::string& out, const std::string& library) {
    std::error_code unknown;
    if (std::filesystem::equivalent(out, library, unknown))
        throw UsageError("--out names the library itself.");
}

void CheckPng(const std::string& out) {
    if (KindOfPicture(out) != PictureKind::Png)
        throw UsageError("--out: '" + out + "' does not end in .png.");
}

// render
// -------------------------------------------------------------------------------------------------------

struct RenderOptions {
    LibraryChoice library;
    std::string map;
    std::string zoom;
    std::string at;
    std::string size;
    std::string out;
};

constexpr std::int64_t MostViewPixels = std::int64_t{1} << 28; // a view is held in memory

double ParseZoom(const std::string& text) {
    const double zoom = ParseNumber("--zoom", text);
    if (!(zoom > 0))
        throw UsageError("--zoom: '" + text + "' is not above 0.");
    return zoom;
}

PixelSize ParseViewSize(const std::string& text) {
    const PixelSize size = ParseSize("--size", text);
    if (std::int64_t{size.width} * size.height > MostViewPixels)
        throw UsageError("--size: '" + text +
                         "' is more than 268435456 pixels; atlavex extract gives the whole map.");
    return size;
}

ExitStatus RunRender(const RenderOptions& options) {
    const double zoom = ParseZoom(options.zoom);
    const PixelOffset at = ParseOffset("--at", options.at);
    const PixelSize size = ParseViewSize(options.size);
    CheckPng(options.out);
    CheckOutput(options.out, options.library.file);
    const OpenedLibrary library(options.library, Access::Read);
    const auto map = SelectMap(*library, options.map);
    map->SetZoom(zoom);
    std::shared_ptr<const AtlavexImage> view;
    map->RenderView(at.x, at.y, size.width, size.height, view);
    ThrowIfInterrupted();
    WriteBitmapAsPng(view.get(), options.out);
    return ExitStatus::Done;
}

void AddRender(CommandSet& commands) {
    auto options = std::make_shared<RenderOptions>();
    CLI::App& command = commands.Add(
        {"render",
         "FILE MAP --zoom Z --at LEFT,TOP --size WxH --out PNG\n         [--key-file K | --key-env NAME]",
         "Draw a part of a map as a picture.",
         "Draws what the editor would show: the part of the map that begins LEFT,TOP zoomed pixels from its "
         "upper left "
         "corner, WxH pixels large. What lies outside the map is transparent; damaged tiles are hatched. At "
         "a "
         "whole zoom all pixels but the outermost are equally wide.",
         "atlavex render alps.Atlavex 1 --zoom 0.25 --at 0,0 --size 800x600 --out overview.png"});
    AddLibrary(command, options->library);
    AddRequired(command, "MAP", options->map, "The map: position from 1, name or identifier.");
    AddRequired(command, "--zoom", options->zoom, "Screen pixels per map pixel, above 0: 0.25.", "Z");
    AddRequired(command, "--at", options->at,
                "Where the picture begins, in zoomed pixels from the map's upper left corner: 0,0.",
                "LEFT,TOP");
    AddRequired(command, "--size", options->size, "Size of the picture in pixels: 800x600.", "WxH");
    AddRequired(command, "--out", options->out, "The PNG file to write; an older one is replaced.", "PNG");
    commands.OnRun(command, options, RunRender);
}

// extract
// ------------------------------------------------------------------------------------------------------

struct ExtractOptions {
    LibraryChoice library;
    std::string which;
    std::string out;
};

std::unique_ptr<ImageWriter> MakeWriter(NewFile& file, const AtlavexMap& map) {
    const PictureShape shape{map.Width(), map.Height(), map.Format(), map.ColourTable()};
    return KindOfPicture(file.Target()) == PictureKind::Png ? MakePngWriter(file, shape)
                                                            : MakeTiffWriter(file, shape);
}

ExitStatus RunExtract(const ExtractOptions& options) {
    if (KindOfPicture(options.out) == PictureKind::None)
        throw UsageError("--out: '" + options.out + "' does not end in .png, .tif or .tiff.");
    CheckOutput(options.out, options.library.file);
    const OpenedLibrary library(options.library, Access::Read);
    const auto map = SelectMap(*library, options.which);
    NewFile file(options.out);
    const auto writer = MakeWriter(file, *map);
    map->ReadPixels([&writer](std::span<const std::uint8_t> rows, std::int32_t count) {
        writer->WriteRows(rows, count);
    });
    ThrowIfInterrupted();
    writer->Finish();
    file.Commit();
    return ExitStatus::Done;
}

void AddExtract(CommandSet& commands) {
    auto options = std::make_shared<ExtractOptions>();
    CLI::App& command = commands.Add({"extract", "FILE MAP --out PNG|TIFF [--key-file K | --key-env NAME]",
                                      "Write all pixels of a map to an image.",
                                      "Writes the map's pixels as they were added, bit for bit: grey, "
                                      "palette with its transparency, RGB or RGBA. "
                                      "Maps of any size, for the image is never held in memory as a whole.",
                                      "atlavex extract alps.Atlavex 1 --out sheet.tif"});
    AddLibrary(command, options->library);
    AddRequired(command, "MAP", options->which, "The map: position from 1, name or identifier.");
    AddRequired(
        command, "--out", options->out,
        "The image to write, PNG or TIFF by its extension (.png, .tif, .tiff); an older one is replaced.",
        "IMAGE");
    commands.OnRun(command, options, RunExtract);
}

// extract-icon
// -------------------------------------------------------------------------------------------------

ExitStatus RunExtractIcon(const ExtractOptions& options) {
    CheckPng(options.out);
    CheckOutput(options.out, options.library.file);
    const OpenedLibrary library(options.library, Access::Read);
    const std::vector<std::uint8_t> png = SelectIcon(*library, options.which)->PngFile();
    NewFile file(options.out);
    if (std::fwrite(png.data(), 1, png.size(), file.Stream()) != png.size())
        file.Fail(errno);
    file.Commit();
    return ExitStatus::Done;
}

void AddExtractIcon(CommandSet& commands) {
    auto options = std::make_shared<ExtractOptions>();
    CLI::App& command = commands.Add({"extract-icon", "FILE ICON --out PNG [--key-file K | --key-env NAME]",
                                      "Write an icon to an image.", "Writes the picture of an icon as PNG.",
                                      "atlavex extract-icon alps.Atlavex Hut --out hut.png"});
    AddLibrary(command, options->library);
    AddRequired(command, "ICON", options->which, "The icon: position from 1, or name.");
    AddRequired(command, "--out", options->out, "The PNG file to write; an older one is replaced.", "PNG");
    commands.OnRun(command, options, RunExtractIcon);
}

// export-tiles
// -------------------------------------------------------------------------------------------------

struct ExportOptions {
    LibraryChoice library;
    std::string map;
    std::string folder;
};

/// Makes the folder when it is missing and takes it away again when the export left it empty.
class ExportFolder {
public:
    explicit ExportFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
        std::error_code failure, unknown;
        made_ = std::filesystem::create_directory(folder_, failure);
        if (!std::filesystem::is_directory(folder_, unknown))
            throw ComponentError(ErrorNumber::FileNotWritable,
                                 "The folder '" + folder_.string() + "' cannot be made: " +
                                     (failure ? failure.message() : "there is a file of this name") + ".");
    }
    ~ExportFolder() {
        std::error_code notEmpty;
        if (made_)
            std::filesystem::remove(folder_, notEmpty);
    }
    ExportFolder(const ExportFolder&) = delete;
    ExportFolder& operator=(const ExportFolder&) = delete;

private:
    std::filesystem::path folder_;
    bool made_ = false;
};

ExitStatus RunExportTiles(const ExportOptions& options) {
    const OpenedLibrary library(options.library, Access::Read);
    const auto map = SelectMap(*library, options.map);
    const ExportFolder folder(options.folder);
    map->ExportTiles(options.folder, ".png");
    ThrowIfInterrupted();
    return ExitStatus::Done;
}

void AddExportTiles(CommandSet& commands) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App& command = commands.Add(
        {"export-tiles", "FILE MAP --to DIR [--key-file K | --key-env NAME]",
         "Write a map's tiles into a folder.",
         "Writes the tiles of all levels as z/x/y.png (z = 0 the smallest level, y from the top), a "
         "description "
         "(tiles.json), a file for geographic information systems (map.vrt) and a page that shows the map in "
         "a browser "
         "(index.html). Tiles of the same map are replaced; a folder with another map's tiles is left alone.",
         "atlavex export-tiles alps.Atlavex 1 --to tiles"});
    AddLibrary(command, options->library);
    AddRequired(command, "MAP", options->map, "The map: position from 1, name or identifier.");
    AddRequired(command, "--to", options->folder, "The folder; it is made when it does not exist.", "DIR");
    commands.OnRun(command, options, RunExportTiles);
}

} // namespace

void AddOutputCommands(CommandSet& commands) {
    AddRender(commands);
    AddExtract(commands);
    AddExtractIcon(commands);
    AddExportTiles(commands);
}
