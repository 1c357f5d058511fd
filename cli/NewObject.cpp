#include "cli/NewObject.h"

#include "cli/Stamp.h"

#include <filesystem>

void AddNewObjectOptions(CLI::App& command, NewObject& object, const std::string& imageHelp) {
    AddRequired(command, "IMAGE", object.image, imageHelp);
    AddText(command, "--name", "N", object.name,
            "Its name; when not given, the file name up to its first \".\".");
    AddText(command, "--description", "T", object.description, "A text that describes it.");
}

std::string NameOfNewObject(const NewObject& object) {
    if (object.name)
        return *object.name;
    const std::string file = std::filesystem::path(object.image).filename().string();
    return file.substr(0, file.find('.'));
}

void DescribeNewObject(Metadata& metadata, const NewObject& object, const std::string& version) {
    const std::string now = LocalTimeText();
    metadata.SetMetadata("name", NameOfNewObject(object));
    metadata.SetMetadata("description", object.description);
    metadata.SetMetadata("version", version);
    metadata.SetMetadata("created", now);
    metadata.SetMetadata("lastchanged", now);
}

OpenedLibrary OpenForAdding(const LibraryChoice& choice) {
    try {
        return {choice, Access::Write};
    } catch (const ComponentError& error) {
        if (error.Number() != ErrorNumber::FileNotFound)
            throw;
        throw CommandFailure(ExitStatus::Failed,
                             "'" + choice.file + "' does not exist; make it first with: atlavex new FILE");
    }
}
