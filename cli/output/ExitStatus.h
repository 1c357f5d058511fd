#pragma once

#include "base/ComponentError.h"

#include <stdexcept>
#include <string>

/// How the command ends; scripts rely on these numbers (docs/errors.md lists them).
enum class ExitStatus : int {
    Done = 0,
    Failed = 1,           ///< anything that has no number of its own
    Usage = 2,            ///< the command line does not make sense
    WrongKey = 3,         ///< no key, one that does not open the file, or one for a plain file
    MapNotScaled = 4,     ///< coordinates were asked of a map without a scaling
    ImageNotReadable = 5, ///< the image file is no image, damaged or too large
    FileChanged = 6,      ///< another program changed the library in the meantime
    FileDamaged = 7,      ///< the library's content does not match its digests
    HungUp = 129,         ///< stopped because the terminal went away
    Interrupted = 130,    ///< stopped by a signal
    Quit = 131,           ///< stopped by the terminal's quit key
};

/// A failure that the command itself found, with its exit status and one sentence for the user.
class CommandFailure : public std::runtime_error {
public:
    CommandFailure(ExitStatus status, const std::string& sentence)
        : std::runtime_error(sentence), status_(status) {}
    ExitStatus Status() const noexcept { return status_; }

private:
    ExitStatus status_;
};

/// Arguments that do not make sense; found before any file is touched.
class UsageError : public CommandFailure {
public:
    explicit UsageError(const std::string& sentence) : CommandFailure(ExitStatus::Usage, sentence) {}
};

/// The exit status that stands for a component error. `interrupted`: a signal had asked the command to stop.
ExitStatus ExitStatusOf(ErrorNumber number, bool interrupted);
