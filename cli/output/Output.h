#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

// Data goes to the standard output, messages to the standard error stream.

/// Writes data as it is. Throws CommandFailure when it cannot be written.
void Print(std::string_view data);

/// Hands everything printed so far to the reader. Throws CommandFailure when that fails (a full disk).
void FlushOutput();

/// Writes a JSON value and a line end; texts that are no UTF-8 are shown with replacement characters.
void PrintJson(const nlohmann::ordered_json& value);
std::string JsonToText(const nlohmann::ordered_json& value);

/// One message line "atlavex: <sentence>"; a failure to write it is ignored.
void PrintMessage(std::string_view sentence);

/// The text made fit for one line of a terminal: control characters, line ends and the characters that turn
/// the direction of writing are shown as escapes such as \n, \x1b or \u202e.
std::string Printable(std::string_view text);

/// The same for several lines: their ends stay.
std::string PrintableLines(std::string_view text);

/// A coordinate as text: the fewest digits that read back the same, without an exponent unless the number is
/// very large or very small.
std::string CoordinateText(double value);
