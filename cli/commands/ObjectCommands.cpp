#include "cli/commands/CommandSet.h"
#include "cli/commands/Selection.h"
#include "cli/input/Arguments.h"
#include "component/ObjectTexts.h"

#include <algorithm>

// What can be done to a map and to an icon alike.

namespace {

/// The map or icon that a command works on.
struct ObjectOptions {
    LibraryChoice library;
    std::string kind;
    std::string which;
    std::vector<std::string> texts; ///< KEY or KEY=VALUE
};

void AddObject(CLI::App& command, ObjectOptions& options) {
    AddLibraryToChange(command, options.library);
    AddRequired(command, "KIND", options.kind, "The word map or icon.", "map|icon");
    AddRequired(command, "WHICH", options.which,
                "Which of them: position from 1, name, or a map's identifier.");
}

// set
// ----------------------------------------------------------------------------------------------------------

ExitStatus RunSet(const ObjectOptions& options) {
    const ObjectKind kind = ParseObjectKind(options.kind);
    std::vector<std::pair<std::string, std::string>> pairs;
    std::transform(options.texts.begin(), options.texts.end(), std::back_inserter(pairs),
                   [](const std::string& text) { return ParseKeyValue(text); });
    OpenedLibrary library(options.library, Access::Write);
    const auto object = SelectMetadata(*library, kind, options.which);
    StampLastChanged(*object); // first, so that a date given by the user stays
    for (const auto& [key, value] : pairs)
        object->SetMetadata(key, value);
    library.Save();
    return ExitStatus::Done;
}

void AddSet(CommandSet& commands) {
    auto options = std::make_shared<ObjectOptions>();
    CLI::App& command = commands.Add(
        {"set", "FILE (map|icon) WHICH KEY=VALUE... [--key-file K | --key-env NAME] [--wait S]",
         "Set texts that belong to a map or icon.",
         "Sets one or more texts of a map or icon. The keys name, description, version, created and "
         "lastchanged are "
         "used by the editor, any other is free. Lastchanged is set to the present time unless it is among "
         "the keys.",
         "atlavex set alps.Atlavex map 1 name=\"Sheet 12\" author=Smith\natlavex set alps.Atlavex icon Hut "
         "description=\"Mountain hut\""});
    AddObject(command, *options);
    AddTexts(command, "PAIRS", "KEY=VALUE...", options->texts,
             "A key and its text, cut at the first equals sign.");
    commands.OnRun(command, options, RunSet);
}

// unset
// --------------------------------------------------------------------------------------------------------

ExitStatus RunUnset(const ObjectOptions& options) {
    const ObjectKind kind = ParseObjectKind(options.kind);
    OpenedLibrary library(options.library, Access::Write);
    const auto object = SelectMetadata(*library, kind, options.which);
    StampLastChanged(*object);
    for (const std::string& key : options.texts)
        object->RemoveMetadata(key);
    library.Save();
    return ExitStatus::Done;
}

void AddUnset(CommandSet& commands) {
    auto options = std::make_shared<ObjectOptions>();
    CLI::App& command =
        commands.Add({"unset", "FILE (map|icon) WHICH KEY... [--key-file K | --key-env NAME] [--wait S]",
                      "Remove texts that belong to a map or icon.",
                      "Removes one or more texts of a map or icon; a key that it does not "
                      "have is no error. Lastchanged is set to "
                      "the present time unless it is removed itself.",
                      "atlavex unset alps.Atlavex map 1 author"});
    AddObject(command, *options);
    AddTexts(command, "KEYS", "KEY...", options->texts, "The key whose text is removed.");
    commands.OnRun(command, options, RunUnset);
}

// remove
// -------------------------------------------------------------------------------------------------------

void RemoveAt(AtlavexLibrary& library, ObjectKind kind, std::int32_t position) {
    if (kind == ObjectKind::Map)
        library.RemoveMap(library.MapIdAt(position));
    else
        library.RemoveIcon(library.IconIdAt(position));
}

ExitStatus RunRemove(const ObjectOptions& options) {
    const ObjectKind kind = ParseObjectKind(options.kind);
    OpenedLibrary library(options.library, Access::Write);
    RemoveAt(*library, kind, SelectPosition(*library, kind, options.which));
    library.Save();
    return ExitStatus::Done;
}

void AddRemove(CommandSet& commands) {
    auto options = std::make_shared<ObjectOptions>();
    CLI::App& command =
        commands.Add({"remove", "FILE (map|icon) WHICH [--key-file K | --key-env NAME] [--wait S]",
                      "Remove a map or icon.",
                      "Removes a map with its tiles, or an icon. Those behind it move up by one position.",
                      "atlavex remove alps.Atlavex map 2\natlavex remove alps.Atlavex icon name:Hut"});
    AddObject(command, *options);
    commands.OnRun(command, options, RunRemove);
}

} // namespace

void AddObjectCommands(CommandSet& commands) {
    AddSet(commands);
    AddUnset(commands);
    AddRemove(commands);
}
