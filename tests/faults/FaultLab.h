#pragma once

#include "tests/faults/LibraryContent.h"
#include "tests/support/RunProgram.h"
#include "tests/support/TempFolder.h"

#include <filesystem>
#include <string>
#include <vector>

/// Key of sealed libraries in these tests.
inline const std::string TestKey = "geheim-1";

/// Writes an image of random noise, which no codec can make smaller, so that sizes are as asked for.
void MakeNoiseImage(const std::filesystem::path& file, int width, int height, unsigned seed);

/// Makes a library of `maps` noise maps of the given side with metadata, and an icon. An empty key: plain.
void MakeLibrary(const std::filesystem::path& file, int maps, int side, const std::string& key = {});

/// The content of a library file; "wrong key", or "error NUMBER SENTENCE" when it cannot be read whole.
std::string ContentOfFile(const std::filesystem::path& file, const std::string& key = {});

/// What a reader makes of the file that was written from the page on the format alone, without the engine:
/// status 0, or 1 and the reason on its standard error.
ProgramResult ReadBySecondReader(const std::filesystem::path& file);

/// A copy without reading the bytes, where the file system can.
void CopyFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// Names in the folder that begin and end as given.
std::vector<std::string> NamesIn(const std::filesystem::path& folder, const std::string& start,
                                 const std::string& end);
/// Temporaries of saves in the folder, and whatever else has a hidden name.
std::vector<std::string> Temporaries(const std::filesystem::path& folder);
/// Scratch files in the folder.
std::vector<std::string> Scratches(const std::filesystem::path& folder);

/// The program that does one operation on a library.
std::string DriverProgram();

/// Runs a command with these variables set beside the test's own environment.
ProgramResult RunWith(const std::vector<std::string>& variables, const std::vector<std::string>& command);

/// The first "error NUMBER" in a driver's output; 0 when there is none.
int FirstError(const ProgramResult& result);
