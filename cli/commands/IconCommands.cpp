#include "cli/commands/CommandSet.h"
#include "cli/commands/NewObject.h"
#include "cli/commands/Selection.h"
#include "cli/input/Arguments.h"
#include "component/ObjectTexts.h"

namespace {

constexpr const char* IconVersion = "1.0"; // icons carry a version of their own, not the program's

constexpr const char* OffsetHelp = "Displacement from the icon's position in pixels, whole numbers: positive "
                                   "X moves it right, positive Y down; 0,0 "
                                   "centres it.";

void SetOffset(AtlavexIcon& icon, const PixelOffset& offset) {
    icon.SetOffsetX(offset.x);
    icon.SetOffsetY(offset.y);
}

// add-icon
// -----------------------------------------------------------------------------------------------------

struct AddIconOptions {
    LibraryChoice library;
    NewObject object;
    std::string offset = "0,0";
};

ExitStatus RunAddIcon(const AddIconOptions& options) {
    const PixelOffset offset = ParseOffset("--offset", options.offset);
    OpenedLibrary library = OpenForAdding(options.library);
    const auto icon = library->AddIconFromImageFile(options.object.image, NameOfNewObject(options.object));
    DescribeNewObject(*icon, options.object, IconVersion);
    SetOffset(*icon, offset);
    library.Save();
    return ExitStatus::Done;
}

void AddAddIcon(CommandSet& commands) {
    auto options = std::make_shared<AddIconOptions>();
    CLI::App& command = commands.Add(
        {"add-icon",
         "FILE IMAGE [--name N] [--description T] [--offset X,Y] [--key-file K | --key-env NAME] [--wait S]",
         "Add an image to a library as an icon.",
         "Reads a small image (BMP, GIF, JPEG, PNG or TIFF) and adds it as the last icon of the library. "
         "After any "
         "failure the library is as it was.",
         "atlavex add-icon alps.Atlavex hut.png --name Hut --offset 0,-16"});
    AddLibraryToChange(command, options->library);
    AddNewObjectOptions(command, options->object, "The image file.");
    AddText(command, "--offset", "X,Y", options->offset, OffsetHelp);
    commands.OnRun(command, options, RunAddIcon);
}

// offset
// -------------------------------------------------------------------------------------------------------

struct OffsetOptions {
    LibraryChoice library;
    std::string icon;
    std::string offset;
};

ExitStatus RunOffset(const OffsetOptions& options) {
    const PixelOffset offset = ParseOffset("X,Y", options.offset);
    OpenedLibrary library(options.library, Access::Write);
    const auto icon = SelectIcon(*library, options.icon);
    SetOffset(*icon, offset);
    StampLastChanged(*icon);
    library.Save();
    return ExitStatus::Done;
}

void AddOffset(CommandSet& commands) {
    auto options = std::make_shared<OffsetOptions>();
    CLI::App& command = commands.Add(
        {"offset", "FILE ICON X,Y [--key-file K | --key-env NAME] [--wait S]", "Set an icon's displacement.",
         "Sets how far an icon is drawn from the position that it marks.",
         "atlavex offset alps.Atlavex Hut 0,-16\natlavex offset alps.Atlavex 1 -8,4"});
    AddLibraryToChange(command, options->library);
    AddRequired(command, "ICON", options->icon, "The icon: position from 1, or name.");
    AddRequired(command, "OFFSET", options->offset, OffsetHelp, "X,Y");
    commands.OnRun(command, options, RunOffset);
}

} // namespace

void AddIconCommands(CommandSet& commands) {
    AddAddIcon(commands);
    AddOffset(commands);
}
