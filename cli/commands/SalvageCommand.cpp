#include "base/Paths.h"
#include "cli/commands/CommandSet.h"
#include "cli/output/Interrupt.h"
#include "cli/output/Output.h"

#include <nlohmann/json.hpp>

namespace {

struct SalvageOptions {
    std::string file;
    std::string to;
    KeyOptions key;
    bool json = false;
};

void PrintAsJson(const SalvageOptions& options, const SalvageReport& report) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Damage& damage : report.damages)
        list.push_back({{"object", damage.object}, {"reason", damage.reason}});
    PrintJson({{"file", options.file},
               {"to", options.to},
               {"undamaged", report.damages.empty()},
               {"maps", report.maps},
               {"icons", report.icons},
               {"soundTiles", report.tiles},
               {"damage", list}});
}

/// A damaged header may hide that a key is needed; then the key is what is asked for.
SecretText KeyOf(const SalvageOptions& options) {
    auto key = ReadKey(options.key);
    return key ? std::move(*key) : SecretText();
}

SalvageReport LoadSound(OpenedLibrary& library, const SalvageOptions& options, SecretText& key) {
    SalvageReport report = library->SalvageFromFile(options.file, key.Text());
    ThrowIfInterrupted();
    if (!library->KeyFitted() && !options.key.Given()) {
        key = ObtainKey(options.key, options.file);
        report = library->SalvageFromFile(options.file, key.Text());
        ThrowIfInterrupted();
    }
    if (!library->KeyFitted())
        throw CommandFailure(ExitStatus::WrongKey,
                             "The key does not open '" + options.file +
                                 "', or its header is damaged; nothing of a sealed library can be "
                                 "taken without it.");
    if (options.key.Given() && !library->IsSealed())
        throw CommandFailure(ExitStatus::WrongKey,
                             "'" + options.file + "' is not sealed, although a key was named for it.");
    return report;
}

ExitStatus RunSalvage(const SalvageOptions& options) {
    if (IsSomethingAt(options.to))
        throw CommandFailure(ExitStatus::Failed,
                             "'" + options.to + "' exists already; name a file that does not.");
    SecretText key = KeyOf(options);
    OpenedLibrary library = OpenedLibrary::MakeNew();
    const SalvageReport report = LoadSound(library, options, key);
    library.SaveAs(options.to, key);
    if (options.json)
        PrintAsJson(options, report);
    else
        for (const Damage& damage : report.damages)
            Print(Printable(damage.object + ": " + damage.reason) + "\n");
    if (report.damages.empty())
        return ExitStatus::Done;
    throw CommandFailure(ExitStatus::FileDamaged, "'" + options.file +
                                                      "' is damaged; what is sound of it is in '" +
                                                      options.to + "'.");
}

} // namespace

void AddSalvageCommand(CommandSet& commands) {
    auto options = std::make_shared<SalvageOptions>();
    CLI::App& command = commands.Add({"salvage", "FILE --to NEW [--json] [--key-file K | --key-env NAME]",
                                      "Copy all that is sound out of a damaged library.",
                                      "Reads a damaged library page by page, also where it can no longer be "
                                      "opened, and makes a new one of all that "
                                      "is what was stored: FILE is only read, and a file that exists is "
                                      "never overwritten. Prints one line for each "
                                      "thing that is damaged. The pixels of a damaged tile are white, or "
                                      "transparent where the map has transparency; "
                                      "a damaged overview is built anew; an icon without its picture is "
                                      "transparent. Ends with status 0 when all was "
                                      "sound, and with 7 when something was not.",
                                      "atlavex salvage alps.Atlavex --to saved.Atlavex"});
    AddRequired(command, "FILE", options->file, "The damaged library.");
    AddRequired(command, "--to", options->to, "New library for what is sound.", "NEW");
    AddKey(command, options->key, "--key", "that opens FILE, when it is sealed");
    AddJson(command, options->json);
    commands.OnRun(command, options, RunSalvage);
}
