#pragma once

#include <string>
#include <vector>

/// What a finished program left.
struct ProgramResult {
    int status = -1; ///< exit status; 128 + signal when a signal ended it
    std::string out;
    std::string err;
};

/// Runs a program with its arguments (no shell) to the end, feeding it the text.
ProgramResult RunProgram(const std::vector<std::string>& command, const std::string& input = {});
