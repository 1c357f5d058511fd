#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// What can stand at the end of a command line, for the shells that complete it. The words are those behind
/// the program's name; the last one, which may be empty, is being typed.
///
/// The first line of the answer says what the shell is to offer: "words" (those that follow, one a line, with
/// a tab and an explanation behind them or not), "libraries" (files with the extension .Atlavex), "files",
/// "folders", or "nothing". Words are not limited to those that begin as the last one does: shells know in
/// how many ways a text can be meant. Nothing is asked, waited for or complained of: what a sealed or busy
/// library holds is not offered.
std::string CompletionOf(const CLI::App& program, const std::vector<std::string>& words);
