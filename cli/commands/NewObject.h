#pragma once

#include "cli/commands/CommandSet.h"
#include "component/Metadata.h"

#include <optional>
#include <string>

/// What is said of a new map or icon on the command line.
struct NewObject {
    std::string image;
    std::optional<std::string> name; ///< none: taken from the image's file name
    std::string description;
};

/// IMAGE, --name and --description.
void AddNewObjectOptions(CLI::App& command, NewObject& object, const std::string& imageHelp);
/// --name and --description alone.
void AddDescriptionOptions(CLI::App& command, NewObject& object);

/// The name given, else the image's file name up to its first ".".
std::string NameOfNewObject(const NewObject& object);

/// Sets "name", "description", "version", "created" and "lastchanged", in this order.
void DescribeNewObject(Metadata& metadata, const NewObject& object, const std::string& version);

/// Opens the library to which something is to be added. A file that does not exist is an error which tells
/// how to make one.
OpenedLibrary OpenForAdding(const LibraryChoice& choice);
