#include "cli/commands/CommandSet.h"
#include "cli/output/Interrupt.h"

#include <algorithm>
#include <filesystem>

namespace {

// new
// ----------------------------------------------------------------------------------------------------------

struct NewOptions {
    LibraryChoice library;
};

ExitStatus RunNew(const NewOptions& options) {
    // symlink_status: a link that leads nowhere is in the way as well.
    std::error_code unknown;
    if (std::filesystem::exists(std::filesystem::symlink_status(options.library.file, unknown)))
        throw CommandFailure(ExitStatus::Failed, "'" + options.library.file + "' exists already.");
    const SecretText key = options.library.key.Given() ? ReadNewKey(options.library.key) : SecretText();
    OpenedLibrary::MakeNew().SaveAs(options.library.file, key);
    return ExitStatus::Done;
}

void AddNew(CommandSet& commands) {
    auto options = std::make_shared<NewOptions>();
    CLI::App& command =
        commands.Add({"new", "FILE [--key-file K | --key-env NAME]", "Make an empty library.",
                      "Makes a map library without maps and icons. With a key the file is sealed: nobody can "
                      "read its content "
                      "without that key, and there is no way to get the content back when the key is lost. A "
                      "file that exists is "
                      "never replaced.",
                      "atlavex new alps.Atlavex\natlavex new secret.Atlavex --key-file key.txt"});
    AddRequired(command, "FILE", options->library.file, "The library to make, such as alps.Atlavex.");
    AddKey(command, options->library.key, "--key", "that is to seal the library");
    commands.OnRun(command, options, RunNew);
}

// merge
// --------------------------------------------------------------------------------------------------------

struct MergeOptions {
    LibraryChoice library;
    std::vector<std::string> others;
    KeyOptions otherKey;
};

/// Adds one file's content. A sealed file is tried with the key of the other files, when one was named, else
/// with the library's own.
void MergeOne(OpenedLibrary& library, const std::string& other, const MergeOptions& options) {
    if (!library->IsEncrypted(other)) {
        library->MergeFromFile(other, "");
        return;
    }
    if (!options.otherKey.Given() && !library.Key().Empty()) {
        library->MergeFromFile(other, library.Key().Text());
        if (library->KeyFitted())
            return;
    }
    const SecretText key = ObtainKey(options.otherKey, other);
    library->MergeFromFile(other, key.Text());
    if (!library->KeyFitted())
        ThrowWrongKey(other);
}

/// The key of the others was meant for at least one of them.
void CheckOtherKey(AtlavexLibrary& library, const MergeOptions& options) {
    const bool noneSealed =
        std::none_of(options.others.begin(), options.others.end(),
                     [&library](const std::string& other) { return library.IsEncrypted(other); });
    if (options.otherKey.Given() && noneSealed)
        throw CommandFailure(ExitStatus::WrongKey,
                             "None of the other libraries is sealed, although a key was named for them.");
}

ExitStatus RunMerge(const MergeOptions& options) {
    OpenedLibrary library(options.library, Access::Write);
    CheckOtherKey(*library, options);
    for (const std::string& other : options.others) {
        MergeOne(library, other, options);
        ThrowIfInterrupted(); // a merge that is broken off comes back without an error
    }
    library.Save();
    return ExitStatus::Done;
}

void AddMerge(CommandSet& commands) {
    auto options = std::make_shared<MergeOptions>();
    CLI::App& command = commands.Add(
        {"merge",
         "FILE OTHER... [--other-key-file K | --other-key-env NAME] [--key-file K | --key-env NAME] [--wait "
         "S]",
         "Add the content of other libraries.",
         "Adds the maps and icons of the other libraries, in their order, behind those of FILE. Either all "
         "of them "
         "are added or, after any failure, FILE stays as it was. A sealed OTHER is opened with the other "
         "key, or with "
         "FILE's own key when no other key is named.",
         "atlavex merge alps.Atlavex west.Atlavex east.Atlavex"});
    AddLibraryToChange(command, options->library);
    AddTexts(command, "OTHER", "OTHER...", options->others,
             "Libraries whose content is added; they are only read.");
    AddKey(command, options->otherKey, "--other-key", "that opens the sealed ones among OTHER");
    commands.OnRun(command, options, RunMerge);
}

// rekey
// --------------------------------------------------------------------------------------------------------

struct RekeyOptions {
    LibraryChoice library;
    KeyOptions newKey;
    bool noKey = false;
};

ExitStatus RunRekey(const RekeyOptions& options) {
    if (options.noKey == options.newKey.Given())
        throw UsageError("rekey needs either a new key (--new-key-file, --new-key-env) or --no-key.");
    OpenedLibrary library(options.library, Access::Write);
    library.SaveAs(library.File(), options.noKey ? SecretText() : ReadNewKey(options.newKey));
    return ExitStatus::Done;
}

void AddRekey(CommandSet& commands) {
    auto options = std::make_shared<RekeyOptions>();
    CLI::App& command = commands.Add(
        {"rekey",
         "FILE (--new-key-file K | --new-key-env NAME | --no-key) [--key-file K | --key-env NAME] [--wait S]",
         "Set, change or remove the key.",
         "Seals a library under a new key, or makes a plain file of it. The whole file is written anew; "
         "until that is "
         "done the old one stays in place.",
         "atlavex rekey alps.Atlavex --new-key-file key.txt\n"
         "atlavex rekey alps.Atlavex --key-file key.txt --no-key"});
    AddLibraryToChange(command, options->library);
    AddKey(command, options->newKey, "--new-key", "under which FILE is sealed from now on");
    AddFlag(command, "--no-key", options->noKey, "Make a plain file that everybody can read.");
    commands.OnRun(command, options, RunRekey);
}

// compact
// ------------------------------------------------------------------------------------------------------

struct CompactOptions {
    LibraryChoice library;
};

ExitStatus RunCompact(const CompactOptions& options) {
    const OpenedLibrary library(options.library, Access::Write);
    ThrowIfInterrupted();
    library->Compact();
    return ExitStatus::Done;
}

void AddCompact(CommandSet& commands) {
    auto options = std::make_shared<CompactOptions>();
    CLI::App& command = commands.Add(
        {"compact", "FILE [--key-file K | --key-env NAME] [--wait S]",
         "Write the file anew without free room.",
         "Writes the library anew without the room that removed maps and icons left in the file. Saving "
         "does this by itself when more than a quarter of the file is free.",
         "atlavex compact alps.Atlavex"});
    AddLibraryToChange(command, options->library);
    commands.OnRun(command, options, RunCompact);
}

} // namespace

void AddLibraryCommands(CommandSet& commands) {
    AddNew(commands);
    AddMerge(commands);
    AddRekey(commands);
    AddCompact(commands);
}
