#pragma once

#include "cli/output/ExitStatus.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// A pair of numbers: a pixel, an easting and a northing, a longitude and a latitude.
struct Pair {
    double x = 0;
    double y = 0;
};

/// The JSON names of a pair's two numbers.
struct PairNames {
    const char* x;
    const char* y;
};

/// Turns one pair into another; throws ComponentError where that is not possible.
using PairConversion = std::function<Pair(const Pair&)>;

/// Reads the pair of a line of input; nothing for a line that is none.
using PairReading = std::function<std::optional<Pair>(std::string_view line)>;

/// What is converted and how it is read and shown.
struct PairTask {
    PairReading read; ///< of the input's lines; two numbers when there is none
    PairConversion convert;
    PairNames from;
    PairNames to;
    bool json = false;
};

/// The two words of a line, parted by blanks, tabs or ";"; nothing for more or less.
std::optional<std::pair<std::string_view, std::string_view>> TwoWords(std::string_view line);

/// Whether a pair stands on the command line; throws UsageError when only one of its numbers does.
bool PairGiven(const std::string& x, const std::string& y);

/// Converts one pair: prints "X Y", or a JSON object of the four numbers.
ExitStatus ConvertPair(const PairTask& task, const Pair& pair);

/// Converts the pairs of the standard input, one a line, the numbers parted by blanks, tabs or ";". Empty
/// lines and lines that begin with "#" are skipped. Prints one line each, or one JSON array. A line that is
/// no pair or cannot be converted ends the work, after what came before it has been printed; the failure
/// names its number.
ExitStatus ConvertPairsOfInput(const PairTask& task);
