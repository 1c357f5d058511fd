#include "cli/commands/CommandSet.h"

#include "catalogue/modConst.h"
#include "cli/commands/Completion.h"
#include "cli/commands/HelpText.h"
#include "cli/input/RawArguments.h"
#include "cli/input/Suggestion.h"
#include "cli/output/Output.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string_view>

namespace {

constexpr const char* HelpCommand = "help";
constexpr const char* CompletionCommand = "complete"; // asked by shells, not listed

/// "help" asks for what --help tells, and "help COMMAND" for what COMMAND --help tells.
std::vector<const char*> WithHelpAsOption(std::vector<const char*> arguments) {
    if (arguments.size() < 2 || std::string_view(arguments[1]) != HelpCommand)
        return arguments;
    if (arguments.size() > 3)
        throw UsageError("help takes the name of one command (atlavex help lists them).");
    arguments.erase(arguments.begin() + 1);
    arguments.push_back("--help");
    return arguments;
}

std::vector<std::string> CommandNames(const CLI::App& program) {
    std::vector<std::string> names{HelpCommand};
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

/// The parser's sentence in the manner of the other messages, with a word on where help is to be had.
std::string AsSentence(const CLI::ParseError& error, const std::string& command) {
    std::string text = error.what();
    if (text.ends_with('.'))
        text.pop_back();
    return text + " (atlavex " + command + (command.empty() ? "" : " ") + "--help tells more).";
}

/// An option that stores its text as typed: the parser's own conversions give brackets, braces and percent
/// signs a meaning.
CLI::Option* AddRaw(CLI::App& command, const std::string& name, const std::string& form,
                    const std::string& help, const std::function<void(const CLI::results_t&)>& store) {
    const CLI::callback_t keep = [store](CLI::results_t results) {
        std::transform(results.begin(), results.end(), results.begin(), Unguarded);
        store(results);
        return true;
    };
    return command.add_option(name, keep, help)->type_name(form);
}

/// `Text` is a text, or an optional one where an empty text is something else than none.
template <class Text>
CLI::Option* AddOne(CLI::App& command, const std::string& name, const std::string& form, Text& target,
                    const std::string& help) {
    return AddRaw(command, name, form, help, [&target](const CLI::results_t& results) {
        target = results.empty() ? "" : results.front();
    });
}

} // namespace

void AddRequired(CLI::App& command, const std::string& name, std::string& target, const std::string& help,
                 const std::string& form) {
    AddOne(command, name, form, target, help)->required();
}

void AddOptional(CLI::App& command, const std::string& name, std::string& target, const std::string& help) {
    AddOne(command, name, "", target, help);
}

void AddText(CLI::App& command, const std::string& name, const std::string& form, std::string& target,
             const std::string& help) {
    AddOne(command, name, form, target, help);
}

void AddText(CLI::App& command, const std::string& name, const std::string& form,
             std::optional<std::string>& target, const std::string& help) {
    AddOne(command, name, form, target, help);
}

void AddTexts(CLI::App& command, const std::string& name, const std::string& form,
              std::vector<std::string>& target, const std::string& help) {
    const bool positional = !name.starts_with('-'); // an option takes one text each time it is given
    AddRaw(command, name, form, help, [&target](const CLI::results_t& results) { target = results; })
        ->required(positional)
        ->expected(-1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(positional);
}

void AddLibrary(CLI::App& command, LibraryChoice& choice) {
    AddRequired(command, "FILE", choice.file, "The map library, such as alps.Atlavex.");
    AddKey(command, choice.key, "--key", "that opens FILE, when it is sealed");
}

void AddLibraryToChange(CLI::App& command, LibraryChoice& choice) {
    AddLibrary(command, choice);
    AddText(command, "--wait", "SECONDS", choice.wait,
            "Longest wait while another program uses FILE; as long as it takes when not given.");
}

void AddKey(CLI::App& command, KeyOptions& key, const std::string& prefix, const std::string& whose) {
    CLI::Option* file =
        AddOne(command, prefix + "-file", "FILE", key.file,
               "File that holds the key " + whose + "; one line end at its end does not count.");
    AddOne(command, prefix + "-env", "NAME", key.variable, "Environment variable that holds that key.")
        ->excludes(file);
}

void AddFlag(CLI::App& command, const std::string& name, bool& target, const std::string& help) {
    command.add_flag(name, target, help);
}

void AddJson(CLI::App& command, bool& json) {
    AddFlag(command, "--json", json, "Print JSON instead of lines of text.");
}

CommandSet::CommandSet() : app_(std::make_unique<CLI::App>("", "atlavex")) {
    app_->formatter(std::make_shared<ProgramHelp>());
    app_->set_help_flag("-h,--help", "Print this page.");
    app_->set_version_flag("--version", "atlavex " + VersionText(), "Print the version.");
    app_->require_subcommand(1);
    AddLibraryCommands(*this);
    AddMapCommands(*this);
    AddSetGridCommand(*this);
    AddIconCommands(*this);
    AddObjectCommands(*this);
    AddReadCommands(*this);
    AddRecoverCommand(*this);
    AddReviewCommand(*this);
    AddSalvageCommand(*this);
    AddCoordinateCommands(*this);
    AddOutputCommands(*this);
}

CommandSet::~CommandSet() = default;

CLI::App& CommandSet::Add(const CommandText& text) {
    CLI::App& command = *app_->add_subcommand(text.name, text.summary);
    command.formatter(std::make_shared<CommandHelp>(text));
    command.set_help_flag("-h,--help", "Print this page.");
    return command;
}

void CommandSet::OnRun(CLI::App& command, std::function<ExitStatus()> action) {
    command.callback([this, action = std::move(action)] { action_ = action; });
}

void CommandSet::CheckCommandName(int argumentCount, const char* const* arguments) const {
    if (argumentCount < 2)
        throw UsageError("A command is missing (atlavex --help lists them).");
    const std::string name = arguments[1];
    if (name.starts_with('-') && app_->get_option_no_throw(name) == nullptr)
        throw UsageError("There is no option '" + name +
                         "' in front of a command (atlavex --help lists them).");
    const std::vector<std::string> names = CommandNames(*app_);
    if (!name.starts_with('-') && std::find(names.begin(), names.end(), name) == names.end())
        throw UsageError("There is no command '" + name + "' (atlavex --help lists them)" +
                         DidYouMean(name, names));
}

ExitStatus CommandSet::Parse(int argumentCount, const char* const* arguments) {
    try {
        std::vector<std::string> words = GuardedArguments(argumentCount, arguments);
        std::reverse(words.begin(), words.end()); // the parser takes them from the back
        app_->parse(std::move(words));
        return ExitStatus::Done;
    } catch (const CLI::CallForHelp&) {
        Print(app_->help());
    } catch (const CLI::CallForVersion& version) {
        Print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        const auto chosen = app_->get_subcommands();
        throw UsageError(AsSentence(error, chosen.empty() ? "" : chosen.front()->get_name()));
    }
    return ExitStatus::Done;
}

ExitStatus CommandSet::Run(int argumentCount, const char* const* arguments) {
    if (argumentCount > 1 && std::string_view(arguments[1]) == CompletionCommand) {
        Print(CompletionOf(*app_, {arguments + 2, arguments + argumentCount}));
        FlushOutput();
        return ExitStatus::Done;
    }
    const std::vector<const char*> words = WithHelpAsOption({arguments, arguments + argumentCount});
    const int count = static_cast<int>(words.size());
    CheckCommandName(count, words.data());
    const ExitStatus parsed = Parse(count, words.data());
    const ExitStatus status = action_ ? action_() : parsed;
    FlushOutput();
    return status;
}
