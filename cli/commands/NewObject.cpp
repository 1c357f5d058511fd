#include "cli/commands/NewObject.h"

#include "component/ObjectTexts.h"

void AddNewObjectOptions(CLI::App& command, NewObject& object, const std::string& imageHelp) {
    AddRequired(command, "IMAGE", object.image, imageHelp);
    AddDescriptionOptions(command, object);
}

void AddDescriptionOptions(CLI::App& command, NewObject& object) {
    AddText(command, "--name", "N", object.name,
            "Its name; when not given, the file name up to its first \".\".");
    AddText(command, "--description", "T", object.description, "A text that describes it.");
}

std::string NameOfNewObject(const NewObject& object) {
    return object.name ? *object.name : NameFromFile(object.image);
}

void DescribeNewObject(Metadata& metadata, const NewObject& object, const std::string& version) {
    DescribeNewObject(metadata, NameOfNewObject(object), object.description, version);
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
