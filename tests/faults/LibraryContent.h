#pragma once

#include "component/AtlavexLibrary.h"

#include <string>

/// Everything that a library shows — names, identifiers, metadata, scalings, every pixel of every map and
/// icon — as a short text: equal for equal content, whatever file, key or order of writing it came from.
std::string ContentOf(AtlavexLibrary& library);

/// The same content as one line.
std::string OneLine(std::string content);

/// Options for tests: cheap keys, the scratch in the given folder.
LibraryOptions CheapOptions(const std::string& scratchFolder);
