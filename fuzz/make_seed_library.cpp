// Writes a small library of one map and one icon: make_seed_library FILE IMAGE KEY.

#include "component/AtlavexLibrary.h"

#include <filesystem>

int main(int count, char** arguments) {
    if (count != 4)
        return 2;
    LibraryOptions options;
    options.keyOperations = 1;
    options.keyMemoryMiB = 8;
    options.scratchFolder = std::filesystem::path(arguments[1]).parent_path().string();
    const auto library = CreateAtlavexLibrary(options);
    const auto map = library->AddMapFromImageFile(arguments[2], "Sheet", 64, 64);
    map->SetMetadata("author", "Surveyor");
    map->SetScalingThreePoints({10, 50, 0, 0}, {11, 50, 40, 0}, {10, 49, 0, 30});
    const auto fitted = library->AddMapFromImageFile(arguments[2], "Fitted", 64, 64);
    fitted->SetSystemIdentity({"EPSG:4314", "DHDN", "EPSG:1777", "DHDN to WGS 84 (2)", 3, false});
    fitted->SetEnteredPoints({{10, 50, 0.5, 0, "north"}, {11, 50, 40, 0, ""}});
    fitted->SetCheckSets({{"towers", {{10.5, 49.5, 20, 15.25, "mill"}}}});
    fitted->SetScalingThreePoints({10, 50, 0, 0}, {11, 50, 40, 0}, {10, 49, 0, 30});
    library->AddIconFromImageFile(arguments[2], "Mill");
    library->SaveToFile(arguments[1], arguments[3]);
    return 0;
}
