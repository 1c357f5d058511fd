#pragma once

#include "cli/commands/OpenedLibrary.h"
#include "cli/output/ExitStatus.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// What the help of a command says beside its arguments.
struct CommandText {
    std::string name;
    std::string usage;   ///< the arguments in one line, "FILE MAP [PX PY] [--wgs84]"
    std::string summary; ///< one line for the list of commands
    std::string purpose; ///< one paragraph
    std::string example; ///< one or more lines
};

/// The commands of the program: each group of commands adds its own, the parsed command line chooses one.
class CommandSet {
public:
    CommandSet();

    /// A new command; the caller adds its arguments.
    CLI::App& Add(const CommandText& text);

    /// What runs when the command was chosen. The options live as long as the command.
    template <class Options>
    void OnRun(CLI::App& command, std::shared_ptr<Options> options, ExitStatus (*run)(const Options&)) {
        command.callback([this, options, run] { action_ = [options, run] { return run(*options); }; });
    }

    /// Parses the command line and runs what it asks for. Throws CommandFailure and ComponentError.
    ExitStatus Run(int argumentCount, const char* const* arguments);

private:
    ExitStatus Parse(int argumentCount, const char* const* arguments);
    void CheckCommandName(int argumentCount, const char* const* arguments) const;

    CLI::App app_;
    std::function<ExitStatus()> action_;
};

// Arguments that several commands share. -------------------------------------------------------------------

/// A text that must be given; the name of a positional one is in capitals. `form` stands behind an option in
/// the help ("WxH").
CLI::Option* AddRequired(CLI::App& command, const std::string& name, std::string& target,
                         const std::string& help, const std::string& form = "");
/// A text that may be given.
CLI::Option* AddText(CLI::App& command, const std::string& name, const std::string& form, std::string& target,
                     const std::string& help);
/// The same where an empty text is something else than none.
CLI::Option* AddText(CLI::App& command, const std::string& name, const std::string& form,
                     std::optional<std::string>& target, const std::string& help);
/// A text that may be repeated.
CLI::Option* AddTexts(CLI::App& command, const std::string& name, const std::string& form,
                      std::vector<std::string>& target, const std::string& help);
/// FILE and the options of its key.
void AddLibrary(CLI::App& command, LibraryChoice& choice);
/// The same for a command that changes FILE, with how long it waits for other programs.
void AddLibraryToChange(CLI::App& command, LibraryChoice& choice);
/// The options <prefix>-file and <prefix>-env; `whose` says in the help what the key is for.
void AddKey(CLI::App& command, KeyOptions& key, const std::string& prefix, const std::string& whose);
void AddJson(CLI::App& command, bool& json);

// The groups of commands.
// ------------------------------------------------------------------------------------

void AddLibraryCommands(CommandSet& commands);
void AddMapCommands(CommandSet& commands);
void AddSetGridCommand(CommandSet& commands);
void AddIconCommands(CommandSet& commands);
void AddObjectCommands(CommandSet& commands);
void AddReadCommands(CommandSet& commands);
void AddCoordinateCommands(CommandSet& commands);
void AddOutputCommands(CommandSet& commands);
