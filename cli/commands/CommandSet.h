#pragma once

#include "cli/commands/OpenedLibrary.h"
#include "cli/output/ExitStatus.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// Only what parses the command line includes the parser's header: compiling it takes longer than a command.
namespace CLI {
class App;
}

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
    ~CommandSet();

    /// A new command; the caller adds its arguments.
    CLI::App& Add(const CommandText& text);

    /// What runs when the command was chosen. The options live as long as the command.
    template <class Options>
    void OnRun(CLI::App& command, std::shared_ptr<Options> options, ExitStatus (*run)(const Options&)) {
        OnRun(command, [options, run] { return run(*options); });
    }

    /// Parses the command line and runs what it asks for. Throws CommandFailure and ComponentError.
    ExitStatus Run(int argumentCount, const char* const* arguments);

private:
    void OnRun(CLI::App& command, std::function<ExitStatus()> action);
    ExitStatus Parse(int argumentCount, const char* const* arguments);
    void CheckCommandName(int argumentCount, const char* const* arguments) const;

    std::unique_ptr<CLI::App> app_;
    std::function<ExitStatus()> action_;
};

// Arguments that several commands share. -------------------------------------------------------------------

/// A text that must be given; the name of a positional one is in capitals. `form` stands behind an option in
/// the help ("WxH").
void AddRequired(CLI::App& command, const std::string& name, std::string& target, const std::string& help,
                 const std::string& form = "");
/// A positional text that may be left out; its name is in capitals.
void AddOptional(CLI::App& command, const std::string& name, std::string& target, const std::string& help);
/// A text that may be given.
void AddText(CLI::App& command, const std::string& name, const std::string& form, std::string& target,
             const std::string& help);
/// The same where an empty text is something else than none.
void AddText(CLI::App& command, const std::string& name, const std::string& form,
             std::optional<std::string>& target, const std::string& help);
/// A text that may be repeated; a positional one must be given.
void AddTexts(CLI::App& command, const std::string& name, const std::string& form,
              std::vector<std::string>& target, const std::string& help);
/// A switch: true when it is given.
void AddFlag(CLI::App& command, const std::string& name, bool& target, const std::string& help);
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
void AddRecoverCommand(CommandSet& commands);
void AddReviewCommand(CommandSet& commands);
void AddSalvageCommand(CommandSet& commands);
void AddCoordinateCommands(CommandSet& commands);
void AddOutputCommands(CommandSet& commands);
