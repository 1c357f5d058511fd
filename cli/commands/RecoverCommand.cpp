#include "base/Paths.h"
#include "cli/commands/CommandSet.h"
#include "cli/output/Interrupt.h"
#include "cli/output/Output.h"
#include "component/Recovery.h"

#include <nlohmann/json.hpp>

namespace {

struct RecoverOptions {
    std::string scratch; ///< empty: all that can be found
    std::string to;
    std::string base;
    KeyOptions key;
    bool discard = false;
    bool json = false;
};

nlohmann::ordered_json AsJson(const UnsavedWork& work) {
    return {{"scratch", work.scratch},
            {"library", work.library},
            {"time", work.time},
            {"changedMaps", work.changedMaps},
            {"removedMaps", work.removedMaps},
            {"changedIcons", work.changedIcons},
            {"removedIcons", work.removedIcons},
            {"needsKey", work.needsKey},
            {"inUse", work.isInUse},
            {"problem", work.problem}};
}

std::string Count(std::int32_t count, const std::string& one) {
    return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

std::string ChangesOf(const UnsavedWork& work) {
    std::string text =
        Count(work.changedMaps, "map") + " and " + Count(work.changedIcons, "icon") + " added or changed";
    if (work.removedMaps > 0 || work.removedIcons > 0)
        text +=
            ", " + Count(work.removedMaps, "map") + " and " + Count(work.removedIcons, "icon") + " removed";
    return text;
}

std::string AsText(const UnsavedWork& work) {
    const std::string start = work.scratch + "\n  ";
    if (!work.problem.empty())
        return start + work.problem + "\n";
    return start + "library: " + (work.library.empty() ? "a new one, never saved" : work.library) +
           "\n  last change: " + work.time + "\n  unsaved: " + ChangesOf(work) +
           "\n  key: " + (work.needsKey ? "needed" : "none") + "\n" +
           (work.isInUse ? "  in use by a program that is running\n" : "");
}

ExitStatus List(const RecoverOptions& options) {
    const std::vector<UnsavedWork> works = options.scratch.empty()
                                               ? FindUnsavedWork()
                                               : std::vector<UnsavedWork>{LookAtUnsavedWork(options.scratch)};
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const UnsavedWork& work : works)
        if (options.json)
            list.push_back(AsJson(work));
        else
            Print(PrintableLines(AsText(work)));
    if (options.json)
        PrintJson(list);
    return ExitStatus::Done;
}

SecretText KeyOf(const RecoverOptions& options) {
    const UnsavedWork work = LookAtUnsavedWork(options.scratch);
    if (work.needsKey)
        return ObtainKey(options.key, options.scratch);
    if (options.key.Given())
        throw CommandFailure(ExitStatus::WrongKey,
                             "'" + options.scratch + "' is not sealed, although a key was named for it.");
    return {};
}

ExitStatus Recover(const RecoverOptions& options) {
    if (IsSomethingAt(options.to))
        throw CommandFailure(ExitStatus::Failed,
                             "'" + options.to + "' exists already; name a file that does not.");
    const SecretText key = KeyOf(options);
    LoadedWork work;
    {
        OpenedLibrary library = OpenedLibrary::MakeNew();
        work = library->LoadUnsavedWork(options.scratch, key.Text(), options.base);
        ThrowIfInterrupted();
        if (!library->KeyFitted())
            ThrowWrongKey(options.scratch);
        for (const std::string& note : work.notes)
            PrintMessage(note);
        library.SaveAs(options.to, key);
    }
    for (const std::string& missing : work.missing)
        PrintMessage("The " + missing + " could not be recovered: its pixels are in no file that was found.");
    if (!work.missing.empty())
        throw CommandFailure(ExitStatus::Failed, "What was found is in '" + options.to +
                                                     "'; the unsaved work stays in '" + options.scratch +
                                                     "'.");
    DiscardUnsavedWork(options.scratch);
    return ExitStatus::Done;
}

void CheckChoice(const RecoverOptions& options) {
    if (options.scratch.empty() && (options.discard || !options.to.empty()))
        throw UsageError("recover needs the SCRATCH that is meant; atlavex recover lists them.");
    if (options.discard && !options.to.empty())
        throw UsageError("recover takes one of --to and --discard.");
    if (options.to.empty() && (!options.base.empty() || options.key.Given()))
        throw UsageError("--base and the key belong to --to.");
    if (options.json && (options.discard || !options.to.empty()))
        throw UsageError("--json belongs to the list.");
}

ExitStatus RunRecover(const RecoverOptions& options) {
    CheckChoice(options);
    if (!options.to.empty())
        return Recover(options);
    if (!options.discard)
        return List(options);
    DiscardUnsavedWork(options.scratch);
    return ExitStatus::Done;
}

} // namespace

void AddRecoverCommand(CommandSet& commands) {
    auto options = std::make_shared<RecoverOptions>();
    CLI::App& command = commands.Add({"recover",
                                      "[SCRATCH] [--json]\n       atlavex recover SCRATCH --to FILE [--base "
                                      "LIBRARY] [--key-file K | --key-env "
                                      "NAME]\n       atlavex recover SCRATCH --discard",
                                      "Get unsaved work back after a crash.",
                                      "The editor keeps what is not saved yet in a scratch file, and an "
                                      "editor that was killed leaves it there. "
                                      "Without an option this lists the scratches with unsaved work, or says "
                                      "more of one. With --to it makes a new "
                                      "library as it was in the editor: the content of the file that was "
                                      "open and the unsaved changes. A file that "
                                      "exists is never overwritten. The scratch goes when all of it is in "
                                      "the new library, and with --discard.",
                                      "atlavex recover\natlavex recover "
                                      "~/.cache/quorvant-studio/unsaved-4711-0a1b2c3d4e5f6071.scratch --to "
                                      "saved.Atlavex"});
    AddOptional(command, "SCRATCH", options->scratch,
                "The scratch file; all that can be found when not given.");
    AddText(command, "--to", "FILE", options->to, "New library that is made of the work.");
    AddText(command, "--base", "LIBRARY", options->base,
            "Where the library that the work belongs to is now, when it has been moved.");
    AddKey(command, options->key, "--key",
           "that opens the library that the work belongs to, when it is sealed");
    AddFlag(command, "--discard", options->discard, "Remove the scratch and the work in it.");
    AddJson(command, options->json);
    commands.OnRun(command, options, RunRecover);
}
