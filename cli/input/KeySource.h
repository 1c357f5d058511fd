#pragma once

#include "base/Secret.h"

#include <optional>
#include <string>

/// Where a key is to be taken from, as the command line says. Never the key itself: arguments can be seen by
/// every user of the machine.
struct KeyOptions {
    std::optional<std::string> file;     ///< --key-file
    std::optional<std::string> variable; ///< --key-env

    bool Given() const { return file.has_value() || variable.has_value(); }
};

/// The key of the file or the environment variable, which may be empty; nothing when neither is named. A key
/// file holds the key; one line end at its end is dropped. Throws CommandFailure: the file cannot be read,
/// the variable is not set (ExitStatus::WrongKey).
std::optional<SecretText> ReadKey(const KeyOptions& options);

/// As ReadKey for a file that needs a key: asks on the terminal when no source is named. Throws
/// CommandFailure (ExitStatus::WrongKey) when there is no terminal to ask on.
SecretText ObtainKey(const KeyOptions& options, const std::string& sealedFile);

/// The key that is to seal a file. Throws CommandFailure when it is empty: an empty key seals nothing.
SecretText ReadNewKey(const KeyOptions& options);
