#pragma once

#include <string>
#include <vector>

// The parser of the command line gives some texts a meaning of its own: it cuts "[a,b]" into two arguments
// and takes the next argument for the value of "--name=". Here they are made safe for it.

/// The arguments behind the program's name, made safe.
std::vector<std::string> GuardedArguments(int argumentCount, const char* const* arguments);

/// What the parser handed over, as it was typed.
std::string Unguarded(const std::string& text);
