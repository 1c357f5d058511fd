#pragma once

#include "base/Secret.h"

#include <optional>
#include <string>

/// Asks for a key on the terminal without showing what is typed. Nothing when there is no terminal in front
/// of which somebody sits (the standard input and error stream both lead elsewhere). Throws CommandFailure
/// when interrupted.
std::optional<SecretText> AskForKey(const std::string& prompt);
